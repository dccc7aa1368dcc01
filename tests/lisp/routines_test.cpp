// Routines as people write them, loaded from their files and run whole: what they draw, write and restore.
#include "lispsession.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace host {
namespace {

class LispRoutines : public LispSession {
protected:
    LispRoutines() { supportFolders().push_back(QDV_SOURCE_DIR "/tests/lisp/routines"); }
    ~LispRoutines() override { supportFolders().pop_back(); }

    /// What a group holds in every entity that a filter finds, sorted, as a list.
    std::string values(int code, const std::string& filter) {
        return run("(vals " + std::to_string(code) + " '" + filter + ")");
    }
    void load(const std::string& name) {
        run("(defun vals (code filter / ss i out) (if (setq ss (ssget \"_X\" filter)) (repeat (setq i "
            "(sslength "
            "ss)) (setq out (cons (cdr (assoc code (entget (ssname ss (setq i (1- i)))))) out))))"
            " (vl-sort out '(lambda (a b) (< (vl-princ-to-string a) (vl-princ-to-string b)))))");
        const std::string result = run("(load \"" + name + "\")");
        ASSERT_EQ(result.find("错误"), std::string::npos) << result;
    }
    void polyline(const std::string& points, int closed = 0, const std::string& layer = "0") {
        run("(setq pts '(" + points +
            ")) (entmake (append (list '(0 . \"LWPOLYLINE\") '(100 . \"AcDbEntity\") "
            "'(8 . \"" +
            layer + "\") '(100 . \"AcDbPolyline\") (cons 90 (length pts)) (cons 70 " +
            std::to_string(closed) + ")) (mapcar '(lambda (p) (cons 10 p)) pts)))");
    }
};

TEST_F(LispRoutines, NumbersPickedPoints) {
    load("numbering");
    run("(setvar \"OSMODE\" 37)");
    script("bh\nN-\n9\n0,0\n10,0\n20,0\n\n");
    EXPECT_TRUE(lastScriptOk) << caught.shown << caught.diagnostics;
    EXPECT_EQ(values(1, "((0 . \"TEXT\"))"), "(\"N-09\" \"N-10\" \"N-11\")");
    EXPECT_EQ(run("(getvar \"OSMODE\")"), "37");
    // Escape in the middle keeps what was drawn and restores the variables.
    script("bh\nM\n\n5,5\n^C\n");
    EXPECT_EQ(run("(list (sslength (ssget \"X\" '((1 . \"M*\")))) (getvar \"OSMODE\"))"), "(1 37)")
        << caught.shown;
}

TEST_F(LispRoutines, NumbersAlongAPolyline) {
    load("number-along");
    polyline("(0 0) (100 0) (100 60) (40 60)");
    run("(setvar \"OSMODE\" 33)");
    const std::string shown = script("BHX\n50,0\n50\n2\n");
    EXPECT_NE(shown.find("共编号 5 个。"), std::string::npos) << shown << caught.diagnostics;
    EXPECT_EQ(values(1, "((8 . \"编号\"))"), "(\"N001\" \"N002\" \"N003\" \"N004\" \"N005\")");
    // Beside the line at 100 along it, and upright on the way back.
    EXPECT_EQ(
        run("(mapcar '(lambda (c) (cdr (assoc c (entget (ssname (ssget \"X\" '((1 . \"N005\"))) 0))))) '(11 "
            "50))"),
        "((60.0 62.0 0.0) 6.28319)");
    EXPECT_EQ(run("(list (cdr (assoc 62 (tblsearch \"LAYER\" \"编号\"))) (getvar \"OSMODE\"))"), "(3 33)");
    // A wrong object is asked for again, Escape restores.
    run("(entmake '((0 . \"CIRCLE\") (10 300 0 0) (40 . 5.0)))");
    EXPECT_NE(script("BHX\n305,0\n^C\n").find("请选择多段线。"), std::string::npos) << caught.shown;
    EXPECT_EQ(run("(getvar \"OSMODE\")"), "33");
}

TEST_F(LispRoutines, SumsAreas) {
    load("area-sum");
    polyline("(0 0) (100 0) (100 50) (0 50)", 1);
    polyline("(200 0) (230 0) (230 30) (200 30)", 1);
    polyline("(0 100) (50 100) (50 150)");
    EXPECT_EQ(run("(mjh:shoelace (ssname (ssget \"C\" '(190 -1) '(240 40)) 0))"), "900.0");
    const std::string shown = script("MJH\nALL\n\n10,10\n");
    EXPECT_NE(shown.find("略去未闭合的 1 条。"), std::string::npos) << shown << caught.diagnostics;
    EXPECT_EQ(values(1, "((0 . \"TEXT\"))"), "(\"合计 2 块，面积 8.850 亩 (5900.00 平方米)\")") << shown;
    EXPECT_NE(script("MJH\n\n").find("没有选到多段线。"), std::string::npos) << caught.shown;
}

TEST_F(LispRoutines, ExportsAttributes) {
    load("attribute-export");
    run("(entmake '((0 . \"BLOCK\") (2 . \"TOWER\") (70 . 2) (10 0 0 0)))"
        "(entmake '((0 . \"CIRCLE\") (10 0 0 0) (40 . 1.0)))"
        "(foreach tag '(\"NO\" \"TYPE\") (entmake (list '(0 . \"ATTDEF\") '(10 0 2 0) '(40 . 1.0) '(1 . "
        "\"\") "
        "'(3 . \"\") (cons 2 tag) '(70 . 0))))"
        "(entmake '((0 . \"ENDBLK\")))"
        "(defun place (x no type) (entmake (list '(0 . \"INSERT\") '(66 . 1) '(2 . \"TOWER\") (list 10 x 5.5 "
        "0)))"
        " (entmake (list '(0 . \"ATTRIB\") (list 10 x 2 0) '(40 . 1.0) (cons 1 no) '(2 . \"NO\") '(70 . 0)))"
        " (entmake (list '(0 . \"ATTRIB\") (list 10 x 4 0) '(40 . 1.0) (cons 1 type) '(2 . \"TYPE\") '(70 . "
        "0)))"
        " (entmake '((0 . \"SEQEND\"))))"
        "(place 50 \"N2\" \"耐张塔\") (place 0 \"N1\" \"直线\\\"塔\\\",双回\")");
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("lisp-atts-" + std::to_string(::getpid()) + ".csv");
    const std::string shown = script("SXDC\n\n" + file.string() + "\n");
    EXPECT_NE(shown.find("已导出 2 行。"), std::string::npos) << shown << caught.diagnostics;
    std::stringstream content;
    content << std::ifstream(file).rdbuf();
    std::filesystem::remove(file);
    EXPECT_EQ(content.str(), "X,Y,NO,TYPE\n0.000,5.500,N1,\"直线\"\"塔\"\",双回\"\n50.000,5.500,N2,耐张塔\n");
}

TEST_F(LispRoutines, TidiesLayers) {
    load("layer-tidy");
    polyline("(0 0) (10 0)", 0, "DGX_100");
    polyline("(0 5) (10 5)", 0, "dgx_200");
    polyline("(0 9) (10 9)", 0, "县道路");
    polyline("(0 12) (10 12)", 0, "其它");
    run("(setvar \"CLAYER\" \"dgx_200\")");
    const std::string shown = script("TCZL\n");
    EXPECT_NE(shown.find("移动 3 个对象，删去 3 个图层。"), std::string::npos) << shown << caught.diagnostics;
    EXPECT_EQ(values(8, "((0 . \"LWPOLYLINE\"))"),
              "(\"其它\" \"地形-等高线\" \"地形-等高线\" \"地形-道路\")");
    check({
        {"(list (tblsearch \"LAYER\" \"DGX_100\") (cdr (assoc 62 (tblsearch \"LAYER\" \"地形-等高线\"))) "
         "(getvar "
         "\"CLAYER\"))",
         "(nil 34 \"0\")"},
    });
}

TEST_F(LispRoutines, RenamesInBatches) {
    load("batch-rename");
    polyline("(0 0) (10 0)", 0, "旧线路-1");
    polyline("(0 5) (10 5)", 0, "旧线路-2");
    polyline("(0 9) (10 9)", 0, "新线路-2");
    run("(entmake '((0 . \"TEXT\") (10 0 0 0) (40 . 2.5) (1 . \"#1-#1塔\")))"
        "(entmake '((0 . \"BLOCK\") (2 . \"塔A\") (70 . 0) (10 0 0 0)))"
        "(entmake '((0 . \"CIRCLE\") (10 0 0 0) (40 . 1.0))) (entmake '((0 . \"ENDBLK\")))"
        "(entmake '((0 . \"INSERT\") (2 . \"塔A\") (10 5 5 0)))");
    std::string shown = script("PLGM\n\n旧\n新\n");
    EXPECT_NE(shown.find("新线路-2 已存在"), std::string::npos) << shown << caught.diagnostics;
    EXPECT_NE(shown.find("改了 1 处。"), std::string::npos) << shown;
    EXPECT_EQ(values(8, "((0 . \"LWPOLYLINE\"))"), "(\"新线路-1\" \"新线路-2\" \"旧线路-2\")");
    EXPECT_EQ(
        run("(list (tblsearch \"LAYER\" \"旧线路-1\") (cdr (assoc 2 (tblsearch \"LAYER\" \"新线路-1\"))))"),
        "(nil \"新线路-1\")");
    shown = script("PLGM\nT\n#1\nN 01\n");
    EXPECT_EQ(values(1, "((0 . \"TEXT\"))"), "(\"N 01-N 01塔\")") << shown;
    shown = script("PLGM\nB\nA\nB型\n");
    EXPECT_EQ(values(2, "((0 . \"INSERT\"))"), "(\"塔B型\")") << shown << caught.diagnostics;
}

TEST_F(LispRoutines, DrawsACoordinateTable) {
    load("coordinate-table");
    polyline("(1000.5 2000.25) (1100 2000) (1100 2100.1254)");
    const std::string shown = script("ZBB\n1050,2000.1246\n0,0\n");
    EXPECT_NE(shown.find("共 3 点。"), std::string::npos) << shown << caught.diagnostics;
    EXPECT_EQ(values(1, "((0 . \"TEXT\") (72 . 2))"),
              "(\"1000.500\" \"1100.000\" \"1100.000\" \"2000.000\" \"2000.250\" \"2100.125\")");
    EXPECT_EQ(run("(sslength (ssget \"X\" '((0 . \"LINE\") (8 . \"坐标表\"))))"), "9");
    // The whole table is one step.
    script("U\n");
    EXPECT_EQ(run("(ssget \"X\" '((8 . \"坐标表\")))"), "nil") << caught.shown;
}

} // namespace
} // namespace host
