VB sections of the pages; code.cs has the same sections in C#.
<!--##session razorvars##-->
@Code Dim tableName = "<!--##=TABLE.TblName##-->" End Code
<!--##/session##-->

<!--##session info##-->
    ' Fields of <!--##=TABLE.TblName##-->
<!--## for (var e = new Enumerator(TABLE.Fields); !e.atEnd(); e.moveNext()) { var f = e.item(); ##-->
    Public Const <!--##=f.FldParm##--> As String = "<!--##=f.FldName##-->"
<!--## } ##-->
<!--##/session##-->

<!--##session gridcls##-->
    Public Const Table As String = "<!--##=TABLE.TblName##-->"
    Public Shared ReadOnly Fields As String() = { <!--##=FieldNames(TABLE)##--> }
<!--##/session##-->

<!--##session listcode##-->
' Code behind the list page of <!--##=TABLE.TblName##-->
Partial Public Class <!--##=TABLE.TblVar##-->_list
    Public Shared ReadOnly Fields As String() = { <!--##=FieldNames(TABLE)##--> }
End Class
<!--##/session##-->

<!--##session customcode##-->
' Code behind the custom file <!--##=TABLE.TblName##-->
Public Class <!--##=TABLE.TblVar##-->_custom
    Public Shared ReadOnly Fields As String() = { <!--##=FieldNames(TABLE)##--> }
End Class
<!--##/session##-->

<!--##session app##-->
Public Class App
    Public Const Project As String = "<!--##=PROJ.ProjName##-->"
    Public Const TableCount As Integer = <!--##=DB.Tables.Count()##-->
<!--##/session##-->
