// page_host: runs the pages of an ASP.NET Web Pages site through Mono's
// ASP.NET runtime, with no web server in between.
//
//   page_host.exe render SITE OUTDIR PAGE [FORM]...
//   page_host.exe render-all SITE OUTDIR
//   page_host.exe serve SITE PORT
//
// PAGE is a virtual path with an optional query ("orders_view.cshtml?OrderID=3");
// "POST:PAGE" posts the argument after it as an url-encoded form. render writes
// each page's body to OUTDIR under OutputName(PAGE) and prints one line per page:
//   OK <page> <status>              (a redirect adds its Location: "OK <page> 302 <url>")
//   ERROR <page> <message>
// and exits with 1 when any page failed (2 for a usage mistake). Pages are
// ASCII without spaces (encode the query); a page given twice writes one file,
// the later answer. serve answers a browser on 127.0.0.1.
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Net;
using System.Text;
using System.Text.RegularExpressions;
using System.Web.Hosting;

namespace Brindlework.PageHost
{
    public static class Program
    {
        const string Usage =
            "usage: page_host.exe render SITE OUTDIR PAGE [FORM]...   (PAGE: [POST:]path[?query]; FORM follows a POST:)\n" +
            "       page_host.exe render-all SITE OUTDIR\n" +
            "       page_host.exe serve SITE PORT\n";

        public static int Main(string[] args)
        {
            try {
                if (args.Length >= 3 && args[0] == "render")
                    return Render(SiteRoot(args[1]), args[2], ParsePages(args.Skip(3).ToArray()));
                if (args.Length == 3 && args[0] == "render-all")
                    return Render(SiteRoot(args[1]), args[2], AllPages(SiteRoot(args[1])));
                if (args.Length == 3 && args[0] == "serve") {
                    int port;
                    if (!int.TryParse(args[2], out port) || port <= 0 || port > 65535)
                        throw new UsageException("PORT must be a number from 1 to 65535");
                    string root = SiteRoot(args[1]);
                    return new SiteServer(root, Start(root)).Run(port);
                }
            } catch (UsageException e) {
                Console.Error.WriteLine("page_host: " + e.Message);
                return 2;
            } catch (Exception e) {
                Console.Error.WriteLine("page_host: " + e.Message);
                return 1;
            }
            Console.Error.Write(Usage);
            return 2;
        }

        sealed class UsageException : Exception
        {
            public UsageException(string message) : base(message) { }
        }

        sealed class PageArg
        {
            public string Text;  // the page as given, reported back as it stands
            public PageRequest Request;
        }

        static List<PageArg> ParsePages(string[] args)
        {
            if (args.Length == 0) throw new UsageException("render needs at least one page");
            var pages = new List<PageArg>();
            for (int i = 0; i < args.Length; i++) {
                var page = new PageArg { Text = args[i], Request = PageRequest.Parse(args[i]) };
                if (page.Request.Verb == "POST") {
                    if (++i == args.Length) throw new UsageException(args[i - 1] + " needs a form argument after it");
                    page.Request.ContentType = "application/x-www-form-urlencoded";
                    page.Request.Body = Encoding.UTF8.GetBytes(args[i]);
                }
                pages.Add(page);
            }
            return pages;
        }

        // Every page a browser may ask for: .cshtml files whose name does not
        // start with '_' (layouts and partials by convention), outside the
        // folders that ASP.NET never serves.
        static List<PageArg> AllPages(string root)
        {
            var pages = new List<PageArg>();
            foreach (string file in Directory.EnumerateFiles(root, "*.cshtml", SearchOption.AllDirectories)) {
                string relative = file.Substring(root.Length).TrimStart('/').Replace('\\', '/');
                string[] parts = relative.Split('/');
                if (parts[parts.Length - 1].StartsWith("_")) continue;
                if (parts.Length > 1 && IsPrivateFolder(parts[0])) continue;
                pages.Add(new PageArg { Text = relative, Request = PageRequest.Parse(relative) });
            }
            pages.Sort((a, b) => string.CompareOrdinal(a.Text, b.Text));
            return pages;
        }

        static bool IsPrivateFolder(string name)
        {
            string[] folders = { "bin", "App_Code", "App_Data", "App_GlobalResources", "App_LocalResources" };
            return folders.Any(f => string.Equals(f, name, StringComparison.OrdinalIgnoreCase));
        }

        // The file a page's body is written to: the page and query with every
        // character that is not safe in a file name replaced by '_', so
        // "orders_view.cshtml?OrderID=3" becomes "orders_view.cshtml_OrderID=3.html"
        // and "POST:add.cshtml" becomes "POST_add.cshtml.html".
        public static string OutputName(string text)
        {
            return Regex.Replace(text.TrimStart('/'), "[^A-Za-z0-9._=-]", "_") + ".html";
        }

        static int Render(string root, string outDir, List<PageArg> pages)
        {
            PageRuntime runtime = Start(root);
            Directory.CreateDirectory(outDir);
            int failed = 0;
            foreach (PageArg page in pages) {
                PageResponse response = runtime.Run(page.Request);
                File.WriteAllBytes(Path.Combine(outDir, OutputName(page.Text)), response.Body);
                string error = ErrorOf(response, root, runtime, page.Request);
                if (error != null) {
                    failed++;
                    Console.WriteLine("ERROR " + page.Text + " " + error);
                    continue;
                }
                string location = response.Status >= 300 && response.Status < 400 ? response.Header("Location") : null;
                Console.WriteLine("OK " + page.Text + " " + response.Status + (location != null ? " " + location : ""));
            }
            return failed == 0 ? 0 : 1;
        }

        // A response is a failure when the runtime did not answer or the status
        // is 400 or more. The message is the one that ASP.NET's error page shows
        // in its exceptionMessage heading, on one line, with the source file and
        // line of a compiler error.
        static string ErrorOf(PageResponse response, string root, PageRuntime runtime, PageRequest request)
        {
            if (response.Failure != null) return response.Failure;
            if (response.Status < 400) return null;
            var page = ErrorPage.Parse(Encoding.UTF8.GetString(response.Body));
            string error = "HTTP " + response.Status;
            if (page.Exception == "System.Web.HttpParseException") {
                string culprit = UnparsablePage(runtime, request);
                if (culprit != null) return error + ": " + culprit;
            }
            if (page.Message.Length > 0) error += ": " + page.Message;
            if (page.SourceFile.Length > 0) {
                // The compiler names the file by its physical path, Razor by its virtual one.
                string file = page.SourceFile.StartsWith(root + "/") ? "~" + page.SourceFile.Substring(root.Length) : page.SourceFile;
                error += " [" + file + (page.Lines.Length > 0 ? " line " + page.Lines : "") + "]";
            }
            return error;
        }

        // Pages of one folder are compiled together, and a page that Razor cannot
        // parse fails them all with the same message and no file name. Razor's
        // parser, run on each page of the folder, names the culprit: the page
        // itself when it is one, else the first one of the folder.
        static string UnparsablePage(PageRuntime runtime, PageRequest request)
        {
            int slash = request.Path.LastIndexOf('/');
            List<string> found = runtime.ParseErrors(slash < 0 ? "" : request.Path.Substring(0, slash));
            string own = found.FirstOrDefault(f => f.StartsWith("~/" + request.Path + " ", StringComparison.Ordinal));
            if (own != null) return ErrorPage.OneLine(own);
            if (found.Count > 0) return "compiled with a page that does not parse: " + ErrorPage.OneLine(found[0]);
            return null;
        }

        // The full path of the site folder, without a trailing '/'.
        static string SiteRoot(string site)
        {
            string root = Path.GetFullPath(site).TrimEnd('/');
            if (!Directory.Exists(root)) throw new DirectoryNotFoundException("no site folder " + root);
            return root;
        }

        // Starts the site's ASP.NET application in its own domain. Deploying
        // comes first: the domain loads this program's assembly from the site's
        // bin/ folder, and pages compile against the bin/ assemblies.
        static PageRuntime Start(string root)
        {
            Deployment.Deploy(root);
            return (PageRuntime)ApplicationHost.CreateApplicationHost(typeof(PageRuntime), "/", root);
        }
    }
}

namespace Brindlework.PageHost
{
    // What the ASP.NET error page of a failed request says: the exception's type
    // in its h1, the message in h2.exceptionMessage and, for compiler errors,
    // the source file and line in labelled paragraphs.
    sealed class ErrorPage
    {
        public string Exception = "";
        public string Message = "";
        public string SourceFile = "";
        public string Lines = "";

        const RegexOptions Options = RegexOptions.Singleline | RegexOptions.IgnoreCase;

        public static ErrorPage Parse(string html)
        {
            return new ErrorPage {
                Exception = Find(html, "<h1>(.*?)</h1>"),
                Message = Find(html, "<h2[^>]*class=\"[^\"]*exceptionMessage[^\"]*\"[^>]*>(.*?)</h2>"),
                SourceFile = Find(html, "<strong>Error source file:\\s*</strong>(.*?)</p>"),
                Lines = Find(html, "<strong>Error lines:\\s*</strong>(.*?)</p>"),
            };
        }

        static string Find(string html, string pattern)
        {
            Match match = Regex.Match(html, pattern, Options);
            if (!match.Success) return "";
            return OneLine(WebUtility.HtmlDecode(Regex.Replace(match.Groups[1].Value, "<[^>]*>", " ")));
        }

        public static string OneLine(string text) { return Regex.Replace(text, "\\s+", " ").Trim(); }
    }

    // Deployment on Mono. The site's bin/ folder must hold the Web Pages and
    // Razor assemblies (Mono ships them but does not load them for a site by
    // itself), Mono.Data.Sqlite for pages that open SQLite databases, and this
    // program, whose PageRuntime the application domain creates. A copy is
    // made when the file is missing or differs from its source in size or
    // time, so a rebuilt host or an updated Mono replaces an older copy.
    static class Deployment
    {
        static readonly string[] Required = {
            "System.Web.WebPages.dll", "System.Web.WebPages.Razor.dll", "System.Web.WebPages.Deployment.dll",
            "System.Web.Razor.dll", "Mono.Data.Sqlite.dll",
        };
        static readonly string[] Optional = { "System.Web.Helpers.dll" };

        public static void Deploy(string root)
        {
            string bin = Path.Combine(root, "bin");
            Directory.CreateDirectory(bin);
            string framework = Path.GetDirectoryName(typeof(object).Assembly.Location);
            foreach (string name in Required.Concat(Optional)) {
                string from = Path.Combine(framework, name);
                if (File.Exists(from))
                    CopyIfChanged(from, Path.Combine(bin, name));
                else if (Required.Contains(name))
                    throw new FileNotFoundException(name + " is not in " + framework +
                                                    ": install Mono's Web Pages packages (scripts/deps.sh)");
            }
            string self = typeof(Program).Assembly.Location;
            CopyIfChanged(self, Path.Combine(bin, Path.GetFileName(self)));
        }

        static void CopyIfChanged(string from, string to)
        {
            var source = new FileInfo(from);
            var target = new FileInfo(to);
            if (target.Exists && target.Length == source.Length && target.LastWriteTimeUtc == source.LastWriteTimeUtc)
                return;
            File.Copy(from, to, true);
            File.SetLastWriteTimeUtc(to, source.LastWriteTimeUtc);
        }
    }

    // A small server for looking at a site in a browser. Files that exist and
    // are not code or configuration are sent as they are; every other request,
    // pages and missing files alike, goes through the ASP.NET runtime, which
    // also answers with its own 404 page. One request at a time is enough here.
    sealed class SiteServer
    {
        readonly string root;
        readonly PageRuntime runtime;

        static readonly Dictionary<string, string> ContentTypes = new Dictionary<string, string>(StringComparer.OrdinalIgnoreCase) {
            { ".html", "text/html; charset=utf-8" }, { ".htm", "text/html; charset=utf-8" },
            { ".css", "text/css" }, { ".js", "application/javascript" }, { ".json", "application/json" },
            { ".txt", "text/plain; charset=utf-8" }, { ".png", "image/png" }, { ".jpg", "image/jpeg" },
            { ".jpeg", "image/jpeg" }, { ".gif", "image/gif" }, { ".svg", "image/svg+xml" },
            { ".ico", "image/x-icon" }, { ".woff", "font/woff" }, { ".woff2", "font/woff2" },
        };

        public SiteServer(string root, PageRuntime runtime)
        {
            this.root = root;
            this.runtime = runtime;
        }

        public int Run(int port)
        {
            var listener = new HttpListener();
            listener.Prefixes.Add("http://127.0.0.1:" + port + "/");
            listener.Start();
            Console.WriteLine("serving " + root + " at http://127.0.0.1:" + port + "/ (Ctrl-C stops)");
            while (true) {
                HttpListenerContext context = listener.GetContext();
                try {
                    Answer(context);
                } catch (Exception e) {
                    Console.Error.WriteLine("page_host: " + context.Request.Url + ": " + e.Message);
                } finally {
                    context.Response.Close();
                }
            }
        }

        void Answer(HttpListenerContext context)
        {
            HttpListenerRequest request = context.Request;
            HttpListenerResponse response = context.Response;
            string path = Uri.UnescapeDataString(request.Url.AbsolutePath);
            string file = StaticFile(path);
            if (file != null && (request.HttpMethod == "GET" || request.HttpMethod == "HEAD")) {
                string type;
                response.ContentType = ContentTypes.TryGetValue(Path.GetExtension(file), out type) ? type : "application/octet-stream";
                byte[] bytes = File.ReadAllBytes(file);
                Send(response, 200, bytes, request.HttpMethod == "HEAD");
                return;
            }
            PageResponse page = runtime.Run(ToPageRequest(request));
            if (page.Failure != null) {
                Send(response, 500, Encoding.UTF8.GetBytes(page.Failure), false);
                return;
            }
            foreach (var header in page.Headers) {
                if (IsFramingHeader(header.Key)) continue;
                response.AddHeader(header.Key, header.Value);
            }
            response.StatusDescription = page.StatusText;
            Send(response, page.Status, page.Body, request.HttpMethod == "HEAD");
            Console.WriteLine(request.HttpMethod + " " + request.Url.PathAndQuery + " " + page.Status);
        }

        static void Send(HttpListenerResponse response, int status, byte[] body, bool headOnly)
        {
            response.StatusCode = status;
            response.ContentLength64 = body.Length;
            if (!headOnly) response.OutputStream.Write(body, 0, body.Length);
        }

        // The listener frames the response itself.
        static bool IsFramingHeader(string name)
        {
            return string.Equals(name, "Content-Length", StringComparison.OrdinalIgnoreCase) ||
                   string.Equals(name, "Transfer-Encoding", StringComparison.OrdinalIgnoreCase) ||
                   string.Equals(name, "Connection", StringComparison.OrdinalIgnoreCase);
        }

        // The file under the site root that a URL path names, when it may be
        // sent as it is: never above the root, in bin/ or App_*, nor code or configuration.
        string StaticFile(string urlPath)
        {
            string[] parts = urlPath.Split(new[] { '/' }, StringSplitOptions.RemoveEmptyEntries);
            if (parts.Length == 0 || parts.Any(p => p == ".." || p == ".")) return null;
            if (parts.Length > 1 && (parts[0].Equals("bin", StringComparison.OrdinalIgnoreCase) ||
                                     parts[0].StartsWith("App_", StringComparison.OrdinalIgnoreCase)))
                return null;
            string[] code = { ".cshtml", ".vbhtml", ".cs", ".vb", ".config", ".asax", ".aspx", ".ashx" };
            string file = Path.Combine(root, string.Join("/", parts));
            if (code.Contains(Path.GetExtension(file).ToLowerInvariant())) return null;
            return File.Exists(file) ? file : null;
        }

        static PageRequest ToPageRequest(HttpListenerRequest request)
        {
            var page = new PageRequest {
                Verb = request.HttpMethod,
                Path = Uri.UnescapeDataString(request.Url.AbsolutePath).TrimStart('/'),
                Query = request.Url.Query.TrimStart('?'),
            };
            page.Cookie = request.Headers["Cookie"];
            page.Host = request.Url.Authority;
            if (request.HasEntityBody) {
                page.ContentType = request.ContentType;
                using (var body = new MemoryStream()) {
                    request.InputStream.CopyTo(body);
                    page.Body = body.ToArray();
                }
            }
            return page;
        }
    }
}
