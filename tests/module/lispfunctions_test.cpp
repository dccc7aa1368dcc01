// The module's functions for LISP, called from LISP.
#include "sessionfixture.h"

#include "host/rx/text.h"

namespace {

class LispFunctionsTest : public SessionTest {
protected:
    /// What the expression's value is printed as.
    std::string value(const std::string& expression) {
        type("(setq r (vl-princ-to-string (vl-catch-all-apply '(lambda () " + expression + "))))\n");
        // The marks stand together only in what is printed, not in what is typed.
        const std::wstring shown = type("(princ (strcat \"<\" \"<\" r \">\" \">\"))\n");
        const std::size_t begin = shown.find(L"<<") + 2;
        return host::toUtf8(shown.substr(begin, shown.find(L">>", begin) - begin));
    }
};

TEST_F(LispFunctionsTest, PointsOfEntities) {
    type("(entmake '((0 . \"LWPOLYLINE\") (100 . \"AcDbEntity\") (100 . \"AcDbPolyline\") (90 . 4) (70 . 1)"
         " (10 1000 0) (10 1004 0) (10 1004 2) (10 1000 2)))\n(setq p (entlast))\n"
         "(entmake '((0 . \"LINE\") (10 1 2 0) (11 5 6 0)))\n(setq l (entlast))\n"
         "(entmake '((0 . \"ARC\") (10 7 8 0) (40 . 2.0) (50 . 0.0) (51 . 1.0)))\n(setq a (entlast))\n"
         "(entmake '((0 . \"TEXT\") (10 0 0 0) (40 . 2.5) (1 . \"x\")))\n(setq t1 (entlast))\n");
    EXPECT_EQ(value("(_midp '(0 0) '(10 4 6))"), "(5.0 2.0 3.0)");
    EXPECT_EQ(value("(_midp '(1.5 0.5) '(2.5 0.5 0.0))"), "(2.0 0.5 0.0)");
    EXPECT_EQ(value("(list (_getsp l) (_glpoint l))"), "((1.0 2.0 0.0) (5.0 6.0 0.0))");
    EXPECT_EQ(value("(list (_getsp t1) (_glpoint t1))"), "(nil nil)");
    EXPECT_EQ(value("(list (gcpoint p) (gcpoint l) (gcpoint a))"),
              "((1002.0 1.0 0.0) (3.0 4.0 0.0) (7.0 8.0 0.0))");
    EXPECT_EQ(value("(list (eq l (_fid (cdr (assoc 5 (entget l))))) (_fid \"FFFFF\"))"), "(T nil)");
    const std::wstring shown = type("(_midp 1 '(2 3))\n");
    EXPECT_NE(shown.find(L"用法: (_midp 点1 点2)"), std::wstring::npos) << host::toUtf8(shown);
    for (const char* call :
         {"(_midp)", "(_getsp 1)", "(gcpoint)", "(_fid 5)", "(_strchg \"a\" \"b\")", "(dodrag 1)"}) {
        EXPECT_EQ(value(call), "") << call;
    }
}

TEST_F(LispFunctionsTest, HatchesInsideOfBoundaries) {
    type("(entmake '((0 . \"CIRCLE\") (10 0 0 0) (40 . 10.0)))\n(setq c (entlast) s (ssadd c))\n"
         "(entmake '((0 . \"CIRCLE\") (10 0 0 0) (40 . 4.0)))\n(ssadd (entlast) s)\n"
         "(entmake '((0 . \"LINE\") (10 0 50 0) (11 5 50 0)))\n(setq l (entlast))\n");
    EXPECT_EQ(value("(mapcar '(lambda (c) (cdr (assoc c (entget (dhatch s \"ansi31\" 0.5))))) '(0 2 91 41))"),
              "(HATCH ansi31 2 0.5)");
    EXPECT_EQ(value("(cdr (assoc 70 (entget (dhatch c \"SOLID\"))))"), "1");
    EXPECT_EQ(value("(list (dhatch l \"SOLID\") (dhatch c \"无此图案\"))"), "(nil nil)");
    EXPECT_EQ(value("(sslength (ssget \"X\" '((0 . \"HATCH\"))))"), "5");
}

TEST_F(LispFunctionsTest, TextsAndStyles) {
    EXPECT_EQ(value("(_strchg \"塔1-塔2\" \"塔\" \"杆塔\")"), "杆塔1-杆塔2");
    EXPECT_EQ(
        value(
            "(list (_strchg \"aaa\" \"aa\" \"b\") (_strchg \"abc\" \"\" \"x\") (_strchg \"ab\" \"b\" \"\"))"),
        "(ba abc a)");
    EXPECT_EQ(value("(list (_setsh \"Standard\" 7.5) (getvar \"TEXTSIZE\") (_setsh \"无此样式\"))"),
              "(T 7.5 nil)");
}

TEST_F(LispFunctionsTest, SelectionsOfTheUser) {
    type("(foreach x '(0 10 20) (entmake (list '(0 . \"CIRCLE\") (list 10 x 0 0) '(40 . 1.0))))\n"
         "(entmake '((0 . \"LINE\") (8 . \"甲\") (10 0 1 0) (11 20 1 0)))\n");
    const std::wstring shown =
        type("(setq s (ssgetex \"\\n选塔: \" '((0 . \"CIRCLE\") (-4 . \"<,*,*\") (10 15 0 0))))\nALL\n\n");
    EXPECT_NE(shown.find(L"选塔: "), std::wstring::npos);
    EXPECT_EQ(value("(sslength s)"), "2");
    EXPECT_EQ(value("(list (cdr (assoc 0 (entget (mkngroup s \"甲组\")))) (mkngroup s \"甲组\"))"),
              "(GROUP nil)");
    EXPECT_EQ(value("(cdr (assoc 0 (entget (mkngroup (ssname s 0)))))"), "GROUP");
    EXPECT_EQ(value("(mapcar 'cdr (vl-remove-if-not '(lambda (g) (= 3 (car g))) (dictsearch (namedobjdict) "
                    "\"ACAD_GROUP\")))"),
              "(甲组 *A1)");
    type("(setq n (ssgetex \"\\n选: \" '((0 . \"TEXT\"))))\nALL\n\n");
    EXPECT_EQ(value("n"), "nil");
    type("(setq d (dodrag s '(0 0) \"\\n到: \"))\n5,100\n");
    EXPECT_EQ(value("(list d (sslength (ssget \"W\" '(0 90) '(40 110))))"), "((5.0 100.0 0.0) 2)");
    type("(setq d (dodrag s '(0 0)))\n\n");
    EXPECT_EQ(value("d"), "nil");
    type("U\n");
    EXPECT_EQ(value("(ssget \"W\" '(0 90) '(40 110))"), "nil");
}

TEST_F(LispFunctionsTest, ManyPolylinesAreEditedAtOnceLinesAndArcsToo) {
    type("LINE 0,0 10,0 \nARC 20,0 25,5 30,0\nPLINE 40,0 50,0 50,10 \nTEXT 0,50 2 0 x\n\n");
    type("mpedit\nALL\n\nW\n0.3\nC\n\n");
    EXPECT_EQ(value("(getvar \"CMDNAMES\")"), "");
    EXPECT_EQ(value("(sslength (ssget \"X\" '((0 . \"LWPOLYLINE\") (43 . 0.3) (70 . 1))))"), "3");
    type("mpedit\nALL\n\nO\nQ\nD\nW\n-1\n0\n\n");
    EXPECT_EQ(value("(sslength (ssget \"X\" '((0 . \"LWPOLYLINE\") (43 . 0.0) (70 . 0))))"), "3");
    EXPECT_EQ(value("(getvar \"PEDITACCEPT\")"), "0");
}

} // namespace
