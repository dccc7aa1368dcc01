// entmake of every class of entity and record as programs write the lists: it is made, and entget gives back
// what was asked for.
#include "lispsession.h"

namespace host {
namespace {

class LispEntmake : public LispSession {
protected:
    LispEntmake() {
        // The groups of `wanted` that entget does not give back, with numbers compared as reals.
        run("(defun has (got pair) (vl-some '(lambda (g) (equal g pair 1e-9)) got))"
            "(defun lost (wanted / e got) (setq e (entmakex wanted) got (if e (entget e)))"
            " (if e (vl-remove-if '(lambda (p) (has got p)) wanted) 'not-made))");
    }
};

TEST_F(LispEntmake, GivesBackSimpleEntities) {
    constexpr const char* lists[] = {
        "((0 . \"LINE\") (8 . \"甲\") (62 . 1) (10 1.0 2.0 3.0) (11 4.0 5.0 6.0))",
        "((0 . \"CIRCLE\") (10 1.0 2.0 0.0) (40 . 3.0) (6 . \"Continuous\"))",
        "((0 . \"ARC\") (10 1.0 2.0 0.0) (40 . 3.0) (50 . 0.5) (51 . 1.5))",
        "((0 . \"TEXT\") (10 1.0 2.0 0.0) (40 . 2.5) (1 . \"杆塔\") (50 . 0.25) (41 . 0.7) (7 . "
        "\"Standard\"))",
        "((0 . \"SOLID\") (10 0.0 0.0 0.0) (11 4.0 0.0 0.0) (12 0.0 3.0 0.0) (13 4.0 3.0 0.0))",
        "((0 . \"LWPOLYLINE\") (100 . \"AcDbEntity\") (100 . \"AcDbPolyline\") (90 . 3) (70 . 1) (43 . 0.5) "
        "(38 . 2.0) "
        "(10 0.0 0.0) (10 4.0 3.0) (10 0.0 3.0))",
        "((0 . \"LWPOLYLINE\") (100 . \"AcDbEntity\") (100 . \"AcDbPolyline\") (90 . 2) (70 . 0) (10 0.0 "
        "0.0) (40 . 1.0) "
        "(41 . 2.0) (42 . 0.5) (10 4.0 3.0))",
        "((0 . \"MTEXT\") (100 . \"AcDbEntity\") (100 . \"AcDbMText\") (10 1.0 2.0 0.0) (40 . 2.5) (41 . "
        "30.0) (71 . 1) (1 . "
        "\"一行\\\\P二行\"))",
        "((0 . \"POINT\") (10 1.0 2.0 3.0))",
        "((0 . \"ELLIPSE\") (100 . \"AcDbEntity\") (100 . \"AcDbEllipse\") (10 1.0 2.0 0.0) (11 5.0 0.0 0.0) "
        "(40 . 0.5) (41 . 0.0) "
        "(42 . 3.0))",
        "((0 . \"LINE\") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0) (210 0.0 0.0 -1.0) (39 . 2.0) (370 . 30))",
    };
    for (const char* list : lists) {
        EXPECT_EQ(run(std::string("(lost '") + list + ")"), "nil") << list;
    }
    // Where an aligned text begins follows from its alignment point.
    const std::string aligned =
        "((0 . \"TEXT\") (10 1.0 2.0 0.0) (11 50.0 2.0 0.0) (40 . 2.5) (1 . \"x\") (72 . 2) (73 . 0))";
    EXPECT_EQ(run("(lost '" + aligned + ")"), "((10 1.0 2.0 0.0))");
    EXPECT_EQ(run("(< 45.0 (cadr (assoc 10 (entget (entlast)))) 50.0)"), "T");
}

TEST_F(LispEntmake, GivesBackRecords) {
    constexpr const char* lists[] = {
        "((0 . \"LAYER\") (100 . \"AcDbSymbolTableRecord\") (100 . \"AcDbLayerTableRecord\") (2 . \"新层\") "
        "(70 . 0) (62 . 5) "
        "(6 . \"Continuous\"))",
        "((0 . \"STYLE\") (100 . \"AcDbSymbolTableRecord\") (100 . \"AcDbTextStyleTableRecord\") (2 . "
        "\"仿宋\") (70 . 0) (40 . "
        "0.0) (41 . 0.7) (50 . 0.0) (71 . 0) (3 . \"simplex.shx\") (4 . \"\"))",
        "((0 . \"LTYPE\") (100 . \"AcDbSymbolTableRecord\") (100 . \"AcDbLinetypeTableRecord\") (2 . "
        "\"TESTDASH\") (70 . 0) (3 "
        ". \"- -\") (72 . 65) (73 . 2) (40 . 3.0) (49 . 2.0) (74 . 0) (49 . -1.0) (74 . 0))",
        "((0 . \"UCS\") (100 . \"AcDbSymbolTableRecord\") (100 . \"AcDbUCSTableRecord\") (2 . \"U1\") (70 . "
        "0) (10 1.0 2.0 "
        "0.0) (11 0.0 1.0 0.0) (12 -1.0 0.0 0.0))",
        "((0 . \"APPID\") (100 . \"AcDbSymbolTableRecord\") (100 . \"AcDbRegAppTableRecord\") (2 . "
        "\"MYAPP\") (70 . 0))",
    };
    for (const char* list : lists) {
        EXPECT_EQ(run(std::string("(lost '") + list + ")"), "nil") << list;
        EXPECT_EQ(run(std::string("(entmake '") + list + ")"), "nil") << list; // the name is taken
    }
    check({
        {"(eq (tblobjname \"LAYER\" \"新层\") (cdr (assoc -1 (entget (tblobjname \"LAYER\" \"新层\")))))",
         "T"},
        {"(setq x (entmakex '((0 . \"XRECORD\") (100 . \"AcDbXrecord\") (1 . \"值\") (40 . 2.5) (90 . 7))))"
         "(setq d (entmakex '((0 . \"DICTIONARY\") (100 . \"AcDbDictionary\"))))"
         "(type (dictadd (namedobjdict) \"我的\" d))",
         "ENAME"},
        {"(eq x (dictadd d \"一\" x))", "T"},
        {"(mapcar '(lambda (c) (cdr (assoc c (dictsearch d \"一\")))) '(1 40 90))", "(\"值\" 2.5 7)"},
        {"(dictrename d \"一\" \"二\") (list (dictsearch d \"一\") (cdr (assoc 90 (dictsearch d \"二\"))))",
         "(nil 7)"},
        {"(eq x (dictremove d \"二\"))", "T"},
    });
}

TEST_F(LispEntmake, MakesPolylinesWithTheirVertices) {
    check({
        {"(entmake '((0 . \"POLYLINE\") (66 . 1) (10 0 0 0) (70 . 1)))",
         "((0 . \"POLYLINE\") (66 . 1) (10 0 0 0) (70 . 1))"},
        {"(ssget \"X\")", "nil"},
        {"(foreach p '((0 0 0) (10 0 0) (10 5 0)) (entmake (list '(0 . \"VERTEX\") (cons 10 p) '(42 . 0.0))))"
         "(cdr (assoc 0 (entget (entmakex '((0 . \"SEQEND\"))))))",
         "\"POLYLINE\""},
        {"(setq e (entlast) l nil) (while (setq e (entnext e)) (setq l (cons (cdr (assoc 0 (entget e))) l))) "
         "l",
         "(\"SEQEND\" \"VERTEX\" \"VERTEX\" \"VERTEX\")"},
        {"(list (vlax-curve-getArea (entlast)) (cdr (assoc 10 (entget (entnext (entnext (entlast)))))))",
         "(25.0 (10.0 0.0 0.0))"},
        // Something else in between gives it up.
        {"(entmake '((0 . \"POLYLINE\") (66 . 1))) (entmake '((0 . \"LINE\") (10 0 0 0) (11 1 1 0)))", "nil"},
        {"(sslength (ssget \"X\"))", "1"},
        {"(entmake '((0 . \"POLYLINE\") (66 . 1))) (entmake) (entmake '((0 . \"LINE\") (10 0 0 0) (11 1 1 "
         "0)))"
         "(sslength (ssget \"X\"))",
         "2"},
    });
}

TEST_F(LispEntmake, MakesBlocksAndReferences) {
    check({
        {"(entmake '((0 . \"BLOCK\") (2 . \"B1\") (70 . 2) (10 1 1 0)))"
         "(entmake '((0 . \"LINE\") (10 0 0 0) (11 5 0 0)))"
         "(entmake '((0 . \"POLYLINE\") (66 . 1))) (entmake '((0 . \"VERTEX\") (10 0 0 0))) (entmake '((0 . "
         "\"VERTEX\") "
         "(10 2 0 0))) (entmake '((0 . \"SEQEND\")))"
         "(entmake '((0 . \"ATTDEF\") (10 0 2 0) (40 . 1.0) (1 . \"默认\") (3 . \"号\") (2 . \"NO\") (70 . "
         "0)))"
         "(entmake '((0 . \"ENDBLK\")))",
         "\"B1\""},
        {"(setq e (cdr (assoc -2 (tblsearch \"BLOCK\" \"B1\"))) l nil) (while e (setq l (cons (cdr (assoc 0 "
         "(entget e))) "
         "l) e (entnext e))) (reverse l)",
         "(\"LINE\" \"POLYLINE\" \"VERTEX\" \"VERTEX\" \"SEQEND\" \"ATTDEF\")"},
        {"(ssget \"X\")", "nil"},
        // The name of a block leads to its record and into its definition.
        {"(setq b (tblobjname \"BLOCK\" \"B1\")) (list (cdr (assoc 0 (entget b))) (cdr (assoc 2 (entget b))) "
         "(cdr (assoc 10 "
         "(entget b))) (cdr (assoc 0 (entget (entnext b)))) (cdr (assoc 0 (entget (cdr (assoc 330 (entget "
         "b)))))))",
         "(\"BLOCK\" \"B1\" (1.0 1.0 0.0) \"LINE\" \"BLOCK_RECORD\")"},
        {"(lost '((0 . \"INSERT\") (2 . \"B1\") (10 5.0 5.0 0.0) (41 . 2.0) (42 . 2.0) (43 . 2.0) (50 . "
         "0.5)))",
         "nil"},
        {"(lost '((0 . \"INSERT\") (100 . \"AcDbEntity\") (100 . \"AcDbMInsertBlock\") (2 . \"B1\") (10 5.0 "
         "5.0 0.0) (70 . 3) "
         "(71 . 2) (44 . 10.0) (45 . 20.0)))",
         "nil"},
        {"(entmake '((0 . \"INSERT\") (66 . 1) (2 . \"B1\") (10 9 9 0)))"
         "(entmake '((0 . \"ATTRIB\") (10 9 11 0) (40 . 1.0) (1 . \"7\") (2 . \"NO\") (70 . 0)))"
         "(setq e (entmakex '((0 . \"SEQEND\")))) (mapcar '(lambda (c) (cdr (assoc c (entget (entnext e))))) "
         "'(0 2 1))",
         "(\"ATTRIB\" \"NO\" \"7\")"},
        {"(setq a (entnext e)) (entmod (subst '(1 . \"8\") (assoc 1 (entget a)) (entget a))) (entupd e) (cdr "
         "(assoc 1 "
         "(entget a)))",
         "\"8\""},
        // Anonymous blocks get a free number.
        {"(defun anon () (entmake '((0 . \"BLOCK\") (2 . \"*U\") (70 . 1) (10 0 0 0))) (entmake '((0 . "
         "\"LINE\") (10 0 0 0) "
         "(11 1 0 0))) (entmake '((0 . \"ENDBLK\")))) (setq a (anon)) (list (wcmatch a \"`*U#*\") "
         "(wcmatch (setq b (anon)) \"`*U#*\") (= a b) (tblobjname \"BLOCK\" \"*U\"))",
         "(T T nil nil)"},
        {"(entmake '((0 . \"INSERT\") (2 . \"没有这个块\") (10 0 0 0)))", "nil"},
    });
}

TEST_F(LispEntmake, RefusesWhatIsNoEntity) {
    check({
        {"(entmake '((0 . \"NO-SUCH\") (10 0 0 0)))", "nil"},
        {"(entmake '((10 0 0 0)))", "nil"},
        {"(entmake '((0 . \"LINE\") (10 0 0 0)))", "nil"},
        {"(entmake '((0 . \"CIRCLE\") (10 0 0 0) (40 . 0.0)))", "nil"},
        {"(entmake '((0 . \"TEXT\") (10 0 0 0) (40 . 2.5)))", "nil"},
        {"(entmake '((0 . \"LINE\") (\"a\" . 1)))", "; 错误: 错误的 DXF 组: (\"a\" . 1)"},
        {"(entmake '((0 . \"LINE\") (10 0 0 0) (11 1 0 0) (8 . \"坏|名\")))", "nil"},
        {"(ssget \"X\")", "nil"},
    });
}

} // namespace
} // namespace host
