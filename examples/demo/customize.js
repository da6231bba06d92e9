// Settings that make the demo site show what the Starter template does with
// a project: lookups, fixed value lists, master/detail links, a custom
// script and a second language. Run once on a new demo project:
//   brindlework script examples/demo/customize.js --project demo.agx --save
var tables = PROJ.DB.Tables;

function field(table, name) {
  return tables.Item(table).Fields.Item(name);
}

function lookup(table, name, linkTable, linkField, display) {
  var f = field(table, name);
  f.FldHtmlTag = "SELECT";
  f.FldTagLnkTbl = linkTable;
  f.FldTagLnkFld = linkField;
  f.FldTagLnkDisplay = display;
}

lookup("Products", "CategoryID", "Categories", "CategoryID", "CategoryName");
lookup("Products", "SupplierID", "Suppliers", "SupplierID", "CompanyName");
lookup("Orders", "CustomerID", "Customers", "CustomerID", "LastName");
lookup("Orders", "ShipperID", "Shippers", "ShipperID", "CompanyName");
lookup("OrderDetails", "ProductID", "Products", "ProductID", "ProductName");
// A lookup that shows the key itself.
lookup("Inventory", "StoreID", "Stores", "StoreID", "");

var status = field("Orders", "Status");
status.FldHtmlTag = "RADIO";
status.FldTagValues = ["new", "paid", "shipped", "delivered", "cancelled"].map(function (v) {
  return "\"" + v + "\",\"" + v.charAt(0).toUpperCase() + v.substr(1) + "\"";
}).join("\r\n");

function relate(master, detail, masterField, detailField) {
  MASTERDETAILS.Add(master, detail);
  MASTERDETAILS.Item(master, detail).AddRelation(masterField, detailField);
}
relate("Categories", "Products", "CategoryID", "CategoryID");
relate("Customers", "Orders", "CustomerID", "CustomerID");
relate("Orders", "OrderDetails", "OrderID", "OrderID");

// The list of products tells how many it found, in the title.
var code = PROJ.ProgramLanguage == "VB"
  ? "    Page.Title = Page.Title & \" (\" & list.Total & \")\"\r\n"
  : "    Page.Title = Page.Title + \" (\" + list.Total + \")\";\r\n";
PROJ.AddCustomScript("template", "Table", "list_page_load", PROJ.ProgramLanguage, "list", "Products", "", code);

// English and German; the German captions of a few tables and fields.
PROJ.MultiLanguage = true;
PROJ.LanguageFiles = "english.xml,german.xml";
var german = { Categories: "Kategorien", Customers: "Kunden", Orders: "Bestellungen", Products: "Produkte" };
for (var name in german) LANGUAGE.SetTablePhrase("de", name, "TblCaption", german[name]);
LANGUAGE.SetFieldPhrase("de", "Products", "ProductName", "FldCaption", "Produktname");
LANGUAGE.SetFieldPhrase("de", "Products", "UnitPrice", "FldCaption", "Stückpreis");
