// The part of page_host that lives inside the site's ASP.NET application
// domain: a worker request that carries one request in and records the whole
// response, and the remote object that runs requests through HttpRuntime.
// Requests and responses cross the domain boundary as serializable values.
using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;
using System.Web;
using System.Web.Hosting;
using System.Web.Razor;
using System.Web.Razor.Parser.SyntaxTree;
using System.Web.WebPages.Razor;

namespace Brindlework.PageHost
{
    [Serializable]
    public sealed class PageRequest
    {
        public string Verb = "GET";
        public string Path = "";   // virtual path below the site root, no leading '/'
        public string Query = "";  // without the '?'
        public string ContentType;
        public byte[] Body;
        public string Cookie;
        public string Host = "localhost";

        // Splits "[POST:]page[?query]" as given on the command line.
        public static PageRequest Parse(string text)
        {
            var request = new PageRequest();
            if (text.StartsWith("POST:", StringComparison.OrdinalIgnoreCase)) {
                request.Verb = "POST";
                text = text.Substring(5);
            }
            int mark = text.IndexOf('?');
            request.Path = (mark < 0 ? text : text.Substring(0, mark)).TrimStart('/');
            request.Query = mark < 0 ? "" : text.Substring(mark + 1);
            return request;
        }
    }

    [Serializable]
    public sealed class PageResponse
    {
        public int Status;
        public string StatusText = "";
        public List<KeyValuePair<string, string>> Headers = new List<KeyValuePair<string, string>>();
        public byte[] Body = new byte[0];
        public string Failure;  // set when the runtime itself failed or hung, not the page

        public string Header(string name)
        {
            foreach (var header in Headers)
                if (string.Equals(header.Key, name, StringComparison.OrdinalIgnoreCase))
                    return header.Value;
            return null;
        }
    }

    // SimpleWorkerRequest answers GET requests and writes the body to a text
    // writer; pages need the verb, the form body, the cookie, and we need the
    // status, headers and raw bytes of the response, so those members are ours.
    sealed class CapturingWorkerRequest : SimpleWorkerRequest
    {
        readonly PageRequest request;
        readonly PageResponse response = new PageResponse { Status = 200, StatusText = "OK" };
        readonly MemoryStream body = new MemoryStream();
        readonly ManualResetEvent ended = new ManualResetEvent(false);

        public CapturingWorkerRequest(PageRequest request)
            : base(request.Path, request.Query, TextWriter.Null)
        {
            this.request = request;
        }

        public PageResponse Response
        {
            get {
                response.Body = body.ToArray();
                return response;
            }
        }

        public bool WaitForEnd(TimeSpan limit) { return ended.WaitOne(limit); }

        public override string GetHttpVerbName() { return request.Verb; }

        public override string GetKnownRequestHeader(int index)
        {
            switch (index) {
            case HeaderContentType: return request.ContentType;
            case HeaderContentLength: return request.Body == null ? null : request.Body.Length.ToString();
            case HeaderCookie: return request.Cookie;
            case HeaderHost: return request.Host;
            default: return base.GetKnownRequestHeader(index);
            }
        }

        public override byte[] GetPreloadedEntityBody() { return request.Body; }
        public override int GetPreloadedEntityBodyLength() { return request.Body == null ? 0 : request.Body.Length; }
        public override int GetTotalEntityBodyLength() { return GetPreloadedEntityBodyLength(); }
        public override bool IsEntireEntityBodyIsPreloaded() { return true; }
        public override int ReadEntityBody(byte[] buffer, int size) { return 0; }

        public override void SendStatus(int statusCode, string statusDescription)
        {
            response.Status = statusCode;
            response.StatusText = statusDescription ?? "";
        }

        public override void SendKnownResponseHeader(int index, string value)
        {
            AddHeader(GetKnownResponseHeaderName(index), value);
        }

        public override void SendUnknownResponseHeader(string name, string value) { AddHeader(name, value); }

        void AddHeader(string name, string value)
        {
            response.Headers.Add(new KeyValuePair<string, string>(name, value));
        }

        public override void SendResponseFromMemory(byte[] data, int length) { body.Write(data, 0, length); }

        public override void SendResponseFromMemory(IntPtr data, int length)
        {
            var bytes = new byte[length];
            Marshal.Copy(data, bytes, 0, length);
            body.Write(bytes, 0, length);
        }

        public override void SendResponseFromFile(string filename, long offset, long length)
        {
            using (var file = File.OpenRead(filename)) {
                file.Seek(offset, SeekOrigin.Begin);
                CopyBytes(file, length < 0 ? file.Length - offset : length);
            }
        }

        public override void SendResponseFromFile(IntPtr handle, long offset, long length)
        {
            throw new NotSupportedException("responses from file handles are not captured");
        }

        void CopyBytes(Stream from, long count)
        {
            var buffer = new byte[64 * 1024];
            while (count > 0) {
                int read = from.Read(buffer, 0, (int)Math.Min(buffer.Length, count));
                if (read <= 0) break;
                body.Write(buffer, 0, read);
                count -= read;
            }
        }

        public override void FlushResponse(bool finalFlush) { }

        public override void EndOfRequest() { ended.Set(); }
    }

    // Created by ApplicationHost inside the site's application domain. The
    // runtime may finish a request on another thread, so Run waits for the
    // worker request's end rather than for ProcessRequest to return.
    public sealed class PageRuntime : MarshalByRefObject
    {
        public static readonly TimeSpan RequestLimit = TimeSpan.FromMinutes(5);

        // Standard output carries the host's report. What the runtime or a page
        // prints in this domain (notices, debug messages) goes to standard error.
        public PageRuntime() { Console.SetOut(Console.Error); }

        // The host keeps this object for its whole run (serve mode may idle for
        // hours); the default lease would disconnect it after five minutes.
        public override object InitializeLifetimeService() { return null; }

        public PageResponse Run(PageRequest request)
        {
            var worker = new CapturingWorkerRequest(request);
            try {
                HttpRuntime.ProcessRequest(worker);
            } catch (Exception e) {
                return new PageResponse { Status = 500, Failure = "the runtime failed: " + e.Message };
            }
            if (!worker.WaitForEnd(RequestLimit))
                return new PageResponse { Status = 500, Failure = "no response within " + RequestLimit.TotalSeconds + " s" };
            return worker.Response;
        }

        // Razor's parse errors in the .cshtml files of one folder of the site
        // (the unit that the runtime compiles together), as
        // "~/folder/page.cshtml (line,column): message", in file name order.
        public List<string> ParseErrors(string folder)
        {
            string root = HttpRuntime.AppDomainAppPath;
            var errors = new List<string>();
            string[] files = Directory.GetFiles(Path.Combine(root, folder), "*.cshtml");
            Array.Sort(files, StringComparer.Ordinal);
            foreach (string file in files) {
                string virtualPath = "~/" + file.Substring(root.Length).TrimStart('/');
                var engine = new RazorTemplateEngine(new WebPageRazorHost(virtualPath, file));
                using (var reader = new StreamReader(file)) {
                    foreach (RazorError error in engine.ParseTemplate(reader).ParserErrors)
                        errors.Add(virtualPath + " (" + (error.Location.LineIndex + 1) + "," +
                                   (error.Location.CharacterIndex + 1) + "): " + error.Message);
                }
            }
            return errors;
        }
    }
}
