// LISP inside the editor: typed at the prompt, as answers, as commands, over the drawing, with modules'
// functions.
#include "lispsession.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace host {
namespace {

// A command that takes two points and a text, and draws a line for each pair.
void drawTestLine() {
    ads_point from{};
    ads_point to{};
    while (acedGetPoint(nullptr, L"\n起点: ", from) == RTNORM) {
        if (acedGetPoint(from, L"\n终点: ", to) != RTNORM) {
            return;
        }
        resbuf* list = acutBuildList(RTDXF0, L"LINE", 10, from, 11, to, RTNONE);
        acdbEntMake(list);
        acutRelRb(list);
    }
}

resbuf* seenArguments = nullptr;

int returnArguments() {
    acutRelRb(seenArguments);
    seenArguments = copyResbufList(acedGetArgs()).release();
    acedRetList(seenArguments);
    return RTNORM;
}

int returnEntity() {
    resbuf* const arguments = acedGetArgs();
    resbuf* const list = arguments != nullptr ? acdbEntGet(arguments->resval.rlname) : nullptr;
    acedRetList(list);
    acutRelRb(list);
    return RTNORM;
}

int refuse() {
    return RTERROR;
}

class LispDrawing : public LispSession {
protected:
    LispDrawing() {
        acedRegCmds->addCommand(L"LISPTEST", L"TESTLINE", L"TESTLINE", ACRX_CMD_MODAL, drawTestLine);
        acedDefun(L"modargs", 1);
        acedRegFunc(returnArguments, 1);
        acedDefun(L"modent", 2);
        acedRegFunc(returnEntity, 2);
        acedDefun(L"c:modbad", 3);
        acedRegFunc(refuse, 3);
    }
    ~LispDrawing() override {
        acedRegCmds->removeGroup(L"LISPTEST");
        acutRelRb(std::exchange(seenArguments, nullptr));
    }
};

TEST_F(LispDrawing, IsTypedAtThePrompt) {
    const std::string shown = script("(+ 1\n 2)\n(setq a '(1.0 2))\n!a\n(princ)\n(princ \"x\")\n");
    EXPECT_NE(shown.find("\n3"), std::string::npos) << shown;
    EXPECT_NE(shown.find("\n(1.0 2)"), std::string::npos) << shown;
    EXPECT_NE(shown.find("x\n\"x\""), std::string::npos) << shown;
    EXPECT_TRUE(lastScriptOk);
    EXPECT_NE(script("(+ 1 nil)\n").find("; 错误: 参数类型错误: numberp: nil"), std::string::npos);
    EXPECT_FALSE(lastScriptOk);
}

TEST_F(LispDrawing, FunctionsAreCommands) {
    script("(defun c:twice (/ p) (setq p (getpoint \"\\n点: \")) (command \"TESTLINE\" p (polar p 0 2) \"\") "
           "(princ))\n"
           "twice\n1,2\n");
    EXPECT_TRUE(lastScriptOk) << caught.diagnostics;
    EXPECT_EQ(run("(mapcar '(lambda (c) (cdr (assoc c (entget (entlast))))) '(0 10 11))"),
              "(\"LINE\" (1.0 2.0 0.0) (3.0 2.0 0.0))");
}

TEST_F(LispDrawing, IsAnAnswerToAQuestion) {
    script("TESTLINE\n(list 1 2)\n(polar '(0 0) 0 5)\n\n");
    EXPECT_EQ(run("(cdr (assoc 11 (entget (entlast))))"), "(5.0 0.0 0.0)") << caught.shown;
}

TEST_F(LispDrawing, CommandsGoOnOverSeveralCalls) {
    check({
        {"(command \"TESTLINE\") (foreach p '((0 0) (1 0) (0 1) (1 1)) (command p)) (command \"\")", "nil"},
        {"(sslength (ssget \"X\" '((0 . \"LINE\"))))", "2"},
        {"(command \"TESTLINE\" '(0 0)) (getvar \"CMDNAMES\")", "\"TESTLINE\""},
        {"(command) (getvar \"CMDNAMES\")", "\"\""},
        {"(command \"TESTLINE\" '(0 0)) (car 1)", "; 错误: 参数类型错误: consp 1"},
        {"(getvar \"CMDNAMES\")", "\"\""},
        {"(vl-cmdf \"TESTLINE\" '(5 5) '(6 6) \"\")", "T"},
        {"(command-s \"TESTLINE\" '(5 5) '(6 6) \"\")", "nil"},
    });
}

TEST_F(LispDrawing, PauseLetsTheUserAnswer) {
    script("(command \"TESTLINE\" \"0,0\" pause \"\")\n7,8\n");
    EXPECT_EQ(run("(cdr (assoc 11 (entget (entlast))))"), "(7.0 8.0 0.0)") << caught.shown;
}

TEST_F(LispDrawing, ProgramsInsideWaitingCommandsKeepTheirPlace) {
    // The inner program stands still in its question while the outer one goes on.
    check({
        {"(defun c:inner (/ a b) (setq a 11) (setq b (getpoint \"p\")) (setq seen (list a b)))"
         "(defun outer (x y) (command \"INNER\") (list x y (mapcar '1+ (list 1 2))))"
         "(setq first (outer 1 2)) (command '(3 4)) (list first seen)",
         "((1 2 (2 3)) (11 (3.0 4.0 0.0)))"},
        {"(list a b x y)", "(nil nil nil nil)"},
    });
}

TEST_F(LispDrawing, EntitiesAreLists) {
    check({
        {"(entmake '((0 . \"CIRCLE\") (10 1 2 0) (40 . 3)))", "((0 . \"CIRCLE\") (10 1 2 0) (40 . 3))"},
        {"(setq e (entlast) l (entget e)) (list (cdr (assoc 0 l)) (cdr (assoc 10 l)) (assoc 40 l) (eq e "
         "(cdar l)))",
         "(\"CIRCLE\" (1.0 2.0 0.0) (40 . 3.0) T)"},
        {"(entmod (subst '(40 . 5.5) (assoc 40 l) l)) (cdr (assoc 40 (entget e)))", "5.5"},
        {"(eq e (handent (cdr (assoc 5 l))))", "T"},
        {"(regapp \"QTEST\") (entmod (append (entget e) '((-3 (\"QTEST\" (1000 . \"塔\") (1071 . 70000))))))"
         "(assoc -3 (entget e '(\"QTEST\")))",
         "(-3 (\"QTEST\" (1000 . \"塔\") (1071 . 70000)))"},
        {"(assoc -3 (entget e))", "nil"},
        {"(entdel e) (entget e)", "nil"},
        {"(entdel e) (cdr (assoc 0 (entget e)))", "\"CIRCLE\""},
        {"(entmake '((0 . \"LWPOLYLINE\") (100 . \"AcDbEntity\") (100 . \"AcDbPolyline\") (90 . 2) (70 . 0) "
         "(10 0 0) "
         "(10 4 3)))"
         "(vl-remove-if-not '(lambda (p) (= (car p) 10)) (entget (entlast)))",
         "((10 0.0 0.0) (10 4.0 3.0))"},
        {"(list (vlax-curve-getdistatparam (entlast) 1) (vlax-curve-getpointatdist (entlast) 2.5))",
         "(5.0 (2.0 1.5 0.0))"},
        {"(entmake '((0 . \"LINE\") (10 . 5)))", "; 错误: 错误的 DXF 组: (10 . 5)"},
        {"(entget 5)", "; 错误: 参数类型错误: lentityp 5"},
        {"(null (entnext))", "nil"},
    });
}

TEST_F(LispDrawing, SelectionSetsAreValues) {
    const std::size_t before = pickSetCount();
    check({
        {"(foreach x '(0 10 20) (entmake (list '(0 . \"CIRCLE\") (list 10 x 0 0) '(40 . 1.0))))",
         "((0 . \"CIRCLE\") (10 20 0 0) (40 . 1.0))"},
        {"(entmake '((0 . \"LINE\") (8 . \"L1\") (10 0 50 0) (11 10 50 0)))",
         "((0 . \"LINE\") (8 . \"L1\") (10 0 50 0) (11 10 50 0))"},
        {"(sslength (setq s (ssget \"X\" '((0 . \"CIRCLE\")))))", "3"},
        {"(sslength (ssget \"X\" '((-4 . \"<OR\") (8 . \"L1\") (0 . \"CIRCLE\") (-4 . \"OR>\"))))", "4"},
        {"(sslength (ssget \"W\" '(-2 -2) '(12 2)))", "2"},
        {"(sslength (ssget \"WP\" '((-2 -2) (30 -2) (30 2) (-2 2))))", "3"},
        {"(sslength (ssget \"C\" '(10 -5) '(30 60) '((0 . \"LINE\"))))", "1"},
        {"(ssget \"X\" '((0 . \"TEXT\")))", "nil"},
        {"(setq e (ssname s 0)) (list (type e) (ssname s 9) (eq e (ssmemb e s)))", "(ENAME nil T)"},
        {"(sslength (ssdel e s))", "2"},
        {"(sslength (ssadd e s))", "3"},
        {"(sslength (ssadd))", "0"},
        {"(type (ssadd e))", "PICKSET"},
        {"(sssetfirst nil s) (sslength (cadr (ssgetfirst)))", "3"},
        {"(setq s nil e nil)", "nil"},
        {"(sslength 1)", "; 错误: 参数类型错误: lselsetp 1"},
    });
    EXPECT_EQ(pickSetCount(), before); // the last reference frees the set
}

TEST_F(LispDrawing, TablesVariablesAndUnits) {
    check({
        {"(cdr (assoc 2 (tblsearch \"LAYER\" \"0\")))", "\"0\""},
        {"(tblsearch \"LAYER\" \"无此层\")", "nil"},
        {"(cdr (assoc 2 (tblnext \"LAYER\" t)))", "\"0\""},
        {"(type (tblobjname \"LAYER\" \"0\"))", "ENAME"},
        {"(type (namedobjdict))", "ENAME"},
        {"(cdr (assoc 0 (dictsearch (namedobjdict) \"ACAD_GROUP\")))", "\"DICTIONARY\""},
        {"(setvar \"OSMODE\" 33) (getvar \"OSMODE\")", "33"},
        {"(getvar \"NO-SUCH\")", "nil"},
        {"(setvar \"CLAYER\" \"无此层\")", "; 错误: 变量设置被拒绝: \"CLAYER\" \"无此层\""},
        {"(list (rtos 2.5 2 3) (rtos 1234.5678 2 2) (angtos pi 0 1) (distof \"2.5\") (angtof \"90\"))",
         "(\"2.5\" \"1234.57\" \"180\" 2.5 1.5708)"},
        {"(list (wcmatch \"W12\" \"W#*\") (wcmatch \"w1\" \"W*\") (wcmatch \"ab\" \"~a*\"))", "(T nil nil)"},
        {"(trans '(1 2 3) 0 1)", "(1.0 2.0 3.0)"},
    });
}

TEST_F(LispDrawing, SelectsInEveryWay) {
    run("(foreach x '(0 10 20 30) (entmake (list '(0 . \"CIRCLE\") (list 10 x 0 0) '(40 . 1.0))))"
        "(entmake '((0 . \"LINE\") (8 . \"锁\") (10 0 50 0) (11 10 50 0)))"
        "(defun n (ss) (if ss (sslength ss)))");
    check({
        {"(list (n (ssget \"W\" '(-2 -2) '(10.5 2))) (n (ssget \"C\" '(-2 -2) '(10.5 2))))", "(1 2)"},
        {"(list (n (ssget \"_CP\" '((-2 -2) (9.5 -2) (9.5 2) (-2 2)))) (n (ssget \"F\" '((0 -5) (0 60)))))",
         "(2 2)"},
        {"(n (ssget \"F\" '((-5 0) (35 0)) '((0 . \"CIRCLE\"))))", "4"},
        {"(n (ssget '(1 0)))", "1"},
        {"(ssget '(5 5))", "nil"},
        {"(ssget \"L\") (cdr (assoc 0 (entget (ssname (ssget \"_P\") 0))))", "\"LINE\""},
        {"(list (n (ssget \"A\")) (n (ssget \"_X\" '((-4 . \">\") (40 . 0.5)))))", "(5 4)"},
        {"(list (n (ssget \"X\" '((0 . \"CIRCLE\") (-4 . \">,*,*\") (10 15 0 0)))) (n (ssget \"X\" '((-4 . "
         "\"<NOT\") (0 . "
         "\"CIRCLE\") (-4 . \"NOT>\")))))",
         "(2 1)"},
        {"(sssetfirst nil (ssget \"W\" '(-2 -2) '(22 2))) (n (ssget \"_I\"))", "3"},
        {"(ssget \"X\" '((-4 . \"<OR\") (0 . \"LINE\")))", "nil"},
    });
    script(
        "(setq s1 (ssget \":S\"))\n11,0\n(setq s2 (ssget \"_:L\" '((0 . \"CIRCLE\"))))\nC\n-2,-2\n12,60\n\n");
    EXPECT_EQ(run("(list (n s1) (n s2))"), "(1 2)") << caught.shown;
    check({
        {"(setq a (ssname s2 0) b (ssname s2 1)) (list (eq a (ssmemb a s2)) (n (ssdel a s2)) (ssmemb a s2) "
         "(ssdel a s2))",
         "(T 1 nil nil)"},
        {"(list (eq s2 (ssadd a s2)) (n s2) (n (ssadd a s2)) (length (vl-remove-if-not '(lambda (x) (= (type "
         "(cadr x)) 'ENAME)) (ssnamex s2))))",
         "(T 2 2 2)"},
        {"(entdel a) (list (n s2) (null (entget a)))", "(2 T)"},
    });
}

TEST_F(LispDrawing, KeepsValuesInTheDrawing) {
    check({
        {"(setq v (list 1 -2.5 \"塔\" nil t 'sym '(1 . 2) '((a b) \"}\" . 3.25) 70000)) (equal v "
         "(vlax-ldata-put \"我的数据\" "
         "\"k\" v))",
         "T"},
        {"(list (equal v (vlax-ldata-get \"我的数据\" \"K\")) (vlax-ldata-get \"我的数据\" \"none\" 5) "
         "(vlax-ldata-get "
         "\"none\" \"k\"))",
         "(T 5 nil)"},
        {"(entmake '((0 . \"CIRCLE\") (10 0 0 0) (40 . 1.0))) (setq e (entlast)) (vlax-ldata-put e \"a\" 1) "
         "(vlax-ldata-put "
         "e \"b\" (list e)) (vlax-ldata-put e \"a\" '(2 3))",
         "(2 3)"},
        {"(mapcar '(lambda (k) (equal (vlax-ldata-get e k) (cdr (assoc k (vlax-ldata-list e))))) '(\"a\" "
         "\"b\"))",
         "(T T)"},
        {"(list (vlax-ldata-get e \"a\") (equal (vlax-ldata-get e \"b\") (list e)))", "((2 3) T)"},
        {"(list (vlax-ldata-delete e \"a\") (vlax-ldata-delete e \"a\") (vlax-ldata-get e \"a\"))",
         "(T nil nil)"},
        {"(list (vlax-ldata-test v) (vlax-ldata-test car))", "(T nil)"},
        {"(vl-catch-all-error-p (vl-catch-all-apply 'vlax-ldata-put (list \"我的数据\" \"f\" (list car))))",
         "T"},
        {"(vlax-ldata-get \"我的数据\" \"f\")", "nil"},
    });
}

TEST_F(LispDrawing, SharesValuesBetweenDrawings) {
    run("(vl-bb-set '*shared* '(1 (a . \"b\") 2.5)) (setq everywhere '(x 1)) (vl-propagate 'everywhere)");
    AcApDocument* const first = curDoc();
    session.newDrawing();
    check({
        {"(list (vl-bb-ref '*shared*) (vl-bb-ref 'none) *shared* everywhere)",
         "((1 (A . \"b\") 2.5) nil nil (X 1))"},
        {"(eq (caadr (vl-bb-ref '*shared*)) 'a)", "T"},
        {"(vl-bb-set '*shared* 7) (setq everywhere 2) (vl-propagate 'everywhere)", "nil"},
        {"(vl-doc-set 'own 3) (list own (vl-doc-ref 'own))", "(3 3)"},
    });
    acDocManagerPtr()->activateDocument(first);
    EXPECT_EQ(run("(list (vl-bb-ref '*shared*) everywhere own)"), "(7 2 nil)");
    run("(vl-bb-set '*shared* nil) (setq everywhere nil) (vl-propagate 'everywhere)");
}

TEST_F(LispDrawing, KeepsSettings) {
    check({
        {"(list (vl-registry-write \"HKEY_CURRENT_USER\\\\Software\\\\LispTest\" \"文字\" \"值\") "
         "(vl-registry-write "
         "\"HKEY_CURRENT_USER\\\\Software\\\\LispTest\" \"n\" -5) (vl-registry-write "
         "\"HKEY_CURRENT_USER\\\\Software\\\\LispTest\\\\Below\"))",
         "(\"值\" -5 \"\")"},
        {"(setq k \"HKEY_CURRENT_USER\\\\Software\\\\LispTest\") (list (vl-registry-read k \"文字\") "
         "(vl-registry-read k "
         "\"N\") (vl-registry-read k \"none\") (vl-registry-descendents k) (acad_strlsort "
         "(vl-registry-descendents k \"\")))",
         "(\"值\" -5 nil (\"Below\") (\"n\" \"文字\"))"},
        {"(list (vl-registry-delete k \"n\") (vl-registry-read k \"n\") (vl-registry-delete (strcat k "
         "\"\\\\Below\")) "
         "(vl-registry-delete k) (vl-registry-read k \"文字\"))",
         "(T nil T T nil)"},
        {"(vl-registry-write \"NO_HIVE\\\\a\" \"b\" \"c\")", "nil"},
        {"(setenv \"LispTest\" \"一\") (getenv \"LispTest\")", "\"一\""},
        {"(setcfg \"AppData/LispTest/a\" \"二\") (getcfg \"AppData/LispTest/a\")", "\"二\""},
        {"(list (fix (- (getvar \"CDATE\") (fix (getvar \"CDATE\")))) (> (getvar \"DATE\") 2450000) (numberp "
         "(getvar "
         "\"MILLISECS\")))",
         "(0 T T)"},
    });
}

TEST_F(LispDrawing, LoadsFromTrustedFoldersOnly) {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("lisp-trusted-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder / "code");
    std::ofstream(folder / "code/own.lsp") << "(setq mine 5)";
    const auto variable = [&](const char* name, const std::string& value) {
        return run("(setvar \"" + std::string(name) + "\" \"" + value + "\")");
    };
    EXPECT_TRUE(run("(load \"own\")").starts_with("; 错误: LOAD 失败: \"own\""));
    variable("TRUSTEDPATHS", "/none; " + (folder / "code").string());
    EXPECT_EQ(run("(load \"own\") mine"), "5");
    // A start-up program is loaded once for each drawing, before its first prompt.
    std::ofstream(folder / "code/acaddoc.lsp")
        << "(setq begun (1+ (cond (begun) (0)))) (defun S::STARTUP () (setq up t))";
    script("(setq a 1)\n(setq b 2)\n");
    EXPECT_EQ(run("(list begun up)"), "(1 T)");
    session.newDrawing();
    script("(setq a 1)\n");
    EXPECT_EQ(run("(list begun up)"), "(1 T)");
    // The working folder is trusted where it is named, and only there.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder / "code");
    EXPECT_EQ(run("(setq mine nil) (load \"own\") mine"), "5");
    variable("TRUSTEDPATHS", "");
    EXPECT_EQ(run("(load \"own\" 'no)"), "NO");
    std::filesystem::current_path(before);
    EXPECT_EQ(run("(load \"own\" 'no)"), "NO");
    EXPECT_EQ(run("(open \"/srv/none/a.txt\" \"w\")"), "nil");
    EXPECT_NE(caught.shown.find("不允许访问文件 /srv/none/a.txt"), std::string::npos);
    std::filesystem::remove_all(folder);
}

TEST_F(LispDrawing, QuestionsKeepToWhatInitgetSaid) {
    script("(progn (initget 7) (setq a (getint \"\\n数: \")))\n\n0\n-3\n4\n");
    EXPECT_EQ(run("a"), "4") << caught.shown;
    script("(progn (initget 1 \"Auto Bye\") (setq a (getreal)))\n\nb\n");
    EXPECT_EQ(run("a"), "\"Bye\"") << caught.shown;
    script("(progn (initget 128 \"Yes\") (setq a (getpoint)))\nwhatever\n");
    EXPECT_EQ(run("a"), "\"whatever\"") << caught.shown;
    script("(progn (initget \"LAyer LTtype\") (setq a (getkword)))\nla\n(setq b (getpoint '(1 1) \"\\n点: "
           "\"))\n@2,0\n"
           "(setq c (getcorner '(0 0)))\n5,6\n(setq d (getorient))\n45\n");
    EXPECT_EQ(run("(list a b c (angtos d 0 0))"), "(\"LAyer\" (3.0 1.0 0.0) (5.0 6.0 0.0) \"45\")")
        << caught.shown;
    run("(entmake '((0 . \"CIRCLE\") (10 0 0 0) (40 . 5.0)))");
    script("(setq a (entsel))\n5,0\n(setq b (entsel \"\\n选: \"))\n50,50\n(setq c (getvar \"ERRNO\"))\n");
    EXPECT_EQ(run("(list (eq (car a) (entlast)) (cadr a) b c)"), "(T (5.0 0.0 0.0) nil 7)") << caught.shown;
    script("(progn (initget \"All\") (setq a (entsel)))\nall\n(setq b (getstring t))\na b c\n(setq c "
           "(getstring))\nab\n");
    EXPECT_EQ(run("(list a b c)"), "(\"All\" \"a b c\" \"ab\")") << caught.shown;
}

TEST_F(LispDrawing, ModulesFunctionsGetAndGiveValues) {
    check({
        {"(modargs 1 70000 1.5 \"a\" nil t '(1.0 2.0) '(1.0 2.0 3.0) '(1 \"b\" (2 . 3)))",
         "(1 70000 1.5 \"a\" nil T (1.0 2.0) (1.0 2.0 3.0) (1 \"b\" (2 . 3)))"},
        {"(mapcar 'modargs '(1 2))", "((1) (2))"},
        {"(type modargs)", "EXRXSUBR"},
        {"(entmake '((0 . \"LINE\") (10 0 0 0) (11 10 5 0))) (equal (modent (entlast)) (entget (entlast)))",
         "T"},
        {"(c:modbad)", "; 错误: 外部函数请求错误: C:MODBAD"},
        {"(defun modargs (x) 'mine) (modargs 1)", "MINE"},
    });
    ASSERT_EQ(acedUndef(L"modent", 2), RTNORM);
    EXPECT_EQ(run("(modent 1)"), "; 错误: 没有函数定义: MODENT");
    run("(modargs 1)");
}

TEST_F(LispDrawing, ArgumentsOfModulesAreTyped) {
    run("(modargs 5 70000 '(1.0 2.0) '(1 2) '(\"k\" . 1.5))");
    std::vector<int> types;
    for (const resbuf* at = seenArguments; at != nullptr; at = at->rbnext) {
        types.push_back(at->restype);
    }
    EXPECT_EQ(types, (std::vector<int>{RTSHORT, RTLONG, RTPOINT, RTLB, RTSHORT, RTSHORT, RTLE, RTLB, RTSTR,
                                       RTREAL, RTDOTE}));
}

TEST_F(LispDrawing, QuestionsTakeAnswers) {
    script("(setq r (list (getint \"\\n数: \") (getreal) (getstring t \"\\n文字: \") (getdist '(0 0)) "
           "(getangle)))\n"
           "12\n2.5\n杆 塔\n3,4\n90\n");
    EXPECT_EQ(run("r"), "(12 2.5 \"杆 塔\" 5.0 1.5708)") << caught.shown;
    script("(initget \"Yes No\")\n(setq k (getkword \"\\n[是(Y)/否(N)]: \"))\ny\n");
    EXPECT_EQ(run("k"), "\"Yes\"");
    script("(initget 0 \"Undo\")\n(setq k (getpoint))\nu\n(setq n (getpoint))\n\n");
    EXPECT_EQ(run("(list k n)"), "(\"Undo\" nil)");
    EXPECT_NE(script("(setq z 1)\n(progn (setq z 2) (getpoint) (setq z 3))\n^C\n").find("函数被取消"),
              std::string::npos);
    EXPECT_EQ(run("z"), "2");
    EXPECT_TRUE(lastScriptOk) << caught.shown << caught.diagnostics;
}

TEST_F(LispDrawing, EachDrawingHasItsOwnSymbols) {
    run("(setq only-here 1)");
    AcApDocument* const first = curDoc();
    session.newDrawing();
    EXPECT_EQ(run("only-here"), "nil");
    acDocManagerPtr()->activateDocument(first);
    EXPECT_EQ(run("only-here"), "1");
}

TEST_F(LispDrawing, SymbolsAreReachableForModules) {
    run("(setq shared '(1 2.5 \"x\"))");
    resbuf* value = nullptr;
    ASSERT_EQ(acedGetSym(L"shared", &value), RTNORM);
    ASSERT_EQ(acedPutSym(L"copy", value), RTNORM);
    acutRelRb(value);
    EXPECT_EQ(run("copy"), "(1 2.5 \"x\")");
    run("(defun addup (a b) (+ a b))");
    resbuf* call = acutBuildList(RTSTR, L"addup", RTSHORT, 2, RTREAL, 0.5, RTNONE);
    resbuf* result = nullptr;
    ASSERT_EQ(acedInvoke(call, &result), RTNORM);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->resval.rreal, 2.5);
    acutRelRb(call);
    acutRelRb(result);
}

} // namespace
} // namespace host
