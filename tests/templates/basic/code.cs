C# sections of the pages; code.vb has the same sections in VB.
<!--##session razorvars##-->
@{ var tableName = "<!--##=TABLE.TblName##-->"; }
<!--##/session##-->

<!--##session info##-->
    // Fields of <!--##=TABLE.TblName##-->
<!--## for (var e = new Enumerator(TABLE.Fields); !e.atEnd(); e.moveNext()) { var f = e.item(); ##-->
    public const string <!--##=f.FldParm##--> = "<!--##=f.FldName##-->";
<!--## } ##-->
<!--##/session##-->

<!--##session gridcls##-->
    public const string Table = "<!--##=TABLE.TblName##-->";
    public static readonly string[] Fields = { <!--##=FieldNames(TABLE)##--> };
<!--##/session##-->

<!--##session listcode##-->
// Code behind the list page of <!--##=TABLE.TblName##-->
public partial class <!--##=TABLE.TblVar##-->_list {
    public static readonly string[] Fields = { <!--##=FieldNames(TABLE)##--> };
}
<!--##/session##-->

<!--##session customcode##-->
// Code behind the custom file <!--##=TABLE.TblName##-->
public static class <!--##=TABLE.TblVar##-->_custom {
    public static readonly string[] Fields = { <!--##=FieldNames(TABLE)##--> };
}
<!--##/session##-->

<!--##session app##-->
public static class App {
    public const string Project = "<!--##=PROJ.ProjName##-->";
    public const int TableCount = <!--##=DB.Tables.Count()##-->;
<!--##/session##-->
