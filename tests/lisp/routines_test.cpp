// Routines in the style people write them, run whole: numbering, sums, export of attributes.
#include "lispsession.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace host {
namespace {

class LispRoutines : public LispSession {};

// Numbers the picked places one after the other, keeping and restoring the variables it changes.
constexpr const char* numbering = R"(
(defun C:BH (/ *error* oldcmd oldos pt n prefix ht)
  (defun *error* (msg)
    (if oldcmd (setvar "CMDECHO" oldcmd))
    (if oldos (setvar "OSMODE" oldos))
    (if (and msg (not (wcmatch (strcase msg) "*QUIT*,*EXIT*,*取消*")))
      (princ (strcat "\n错误: " msg)))
    (princ))
  (setq oldcmd (getvar "CMDECHO") oldos (getvar "OSMODE"))
  (setvar "CMDECHO" 0)
  (setvar "OSMODE" 0)
  (setq prefix (getstring "\n编号前缀: "))
  (if (null (setq n (getint "\n起始编号 <1>: "))) (setq n 1))
  (setq ht 2.5)
  (while (setq pt (getpoint (strcat "\n" prefix (itoa n) " 的位置 <退出>: ")))
    (entmake (list '(0 . "TEXT") (cons 10 pt) (cons 40 ht)
                   (cons 1 (strcat prefix (if (< n 10) "0" "") (itoa n)))))
    (setq n (1+ n)))
  (*error* nil))
)";

TEST_F(LispRoutines, Numbering) {
    run(numbering);
    run("(setvar \"OSMODE\" 37)");
    script("bh\nN-\n9\n0,0\n10,0\n20,0\n\n");
    EXPECT_TRUE(lastScriptOk) << caught.shown << caught.diagnostics;
    check({
        {"(setq ss (ssget \"X\" '((0 . \"TEXT\"))) i -1 texts nil)"
         "(repeat (sslength ss) (setq texts (cons (cdr (assoc 1 (entget (ssname ss (setq i (1+ i)))))) "
         "texts)))"
         "(acad_strlsort texts)",
         "(\"N-09\" \"N-10\" \"N-11\")"},
        {"(getvar \"OSMODE\")", "37"},
    });
    // Escape in the middle keeps what was drawn and restores the variables.
    script("bh\nM\n\n5,5\n^C\n");
    EXPECT_EQ(run("(list (sslength (ssget \"X\" '((1 . \"M*\")))) (getvar \"OSMODE\"))"), "(1 37)")
        << caught.shown;
}

constexpr const char* areaSum = R"(
(vl-load-com)
(defun areasum (ss / i total e)
  (setq i 0 total 0.0)
  (while (< i (sslength ss))
    (setq e (ssname ss i)
          total (+ total (vlax-curve-getArea e))
          i (1+ i)))
  total)
(defun lwarea (e / pts sum p q)   ; shoelace over the vertices
  (setq pts (mapcar 'cdr (vl-remove-if-not '(lambda (x) (= (car x) 10)) (entget e)))
        sum 0.0)
  (mapcar '(lambda (p q) (setq sum (+ sum (- (* (car p) (cadr q)) (* (car q) (cadr p))))))
          pts (append (cdr pts) (list (car pts))))
  (abs (/ sum 2.0)))
)";

TEST_F(LispRoutines, AreaSums) {
    run(areaSum);
    run("(defun rect (x y w h) (entmake (list '(0 . \"LWPOLYLINE\") '(100 . \"AcDbEntity\") '(100 . "
        "\"AcDbPolyline\")"
        " '(90 . 4) '(70 . 1) (list 10 x y) (list 10 (+ x w) y) (list 10 (+ x w) (+ y h)) (list 10 x (+ y "
        "h)))))"
        "(rect 0 0 10 5) (rect 20 0 3 3)");
    check({
        {"(rtos (areasum (ssget \"X\" '((0 . \"LWPOLYLINE\")))) 2 2)", "\"59\""},
        {"(lwarea (entlast))", "9.0"},
    });
}

constexpr const char* attributeExport = R"(
(defun attlist (e / d r)
  (setq e (entnext e))
  (while (and e (= (cdr (assoc 0 (setq d (entget e)))) "ATTRIB"))
    (setq r (cons (cons (cdr (assoc 2 d)) (cdr (assoc 1 d))) r)
          e (entnext e)))
  (reverse r))
(defun exportatts (file / f ss i)
  (setq f (open file "w"))
  (if f
    (progn
      (write-line "杆号,型号" f)
      (setq ss (ssget "X" '((0 . "INSERT") (2 . "TOWER") (66 . 1))) i -1)
      (foreach row (vl-sort (progn (setq rows nil)
                                   (repeat (sslength ss)
                                     (setq rows (cons (attlist (ssname ss (setq i (1+ i)))) rows))))
                            '(lambda (a b) (< (cdr (assoc "NO" a)) (cdr (assoc "NO" b)))))
        (write-line (strcat (cdr (assoc "NO" row)) "," (cdr (assoc "TYPE" row))) f))
      (close f)
      T)))
(defun block ()
  (entmake '((0 . "BLOCK") (2 . "TOWER") (70 . 2) (10 0 0 0)))
  (entmake '((0 . "CIRCLE") (10 0 0 0) (40 . 1.0)))
  (entmake '((0 . "ATTDEF") (10 0 2 0) (40 . 1.0) (1 . "") (3 . "no") (2 . "NO") (70 . 0)))
  (entmake '((0 . "ATTDEF") (10 0 4 0) (40 . 1.0) (1 . "") (3 . "type") (2 . "TYPE") (70 . 0)))
  (entmake '((0 . "ENDBLK"))))
(defun place (x no type)
  (entmake (list '(0 . "INSERT") '(2 . "TOWER") '(66 . 1) (list 10 x 0 0)))
  (entmake (list '(0 . "ATTRIB") (list 10 x 2 0) '(40 . 1.0) (cons 1 no) '(2 . "NO") '(70 . 0)))
  (entmake (list '(0 . "ATTRIB") (list 10 x 4 0) '(40 . 1.0) (cons 1 type) '(2 . "TYPE") '(70 . 0)))
  (entmake '((0 . "SEQEND"))))
)";

TEST_F(LispRoutines, AttributeExport) {
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("lisp-atts-" + std::to_string(::getpid()) + ".csv");
    run(attributeExport);
    EXPECT_EQ(run("(block) (place 0 \"N2\" \"耐张塔\") (place 50 \"N1\" \"直线塔\") (exportatts \"" +
                  file.string() + "\")"),
              "T");
    std::stringstream content;
    content << std::ifstream(file).rdbuf();
    std::filesystem::remove(file);
    EXPECT_EQ(content.str(), "杆号,型号\nN1,直线塔\nN2,耐张塔\n");
}

} // namespace
} // namespace host
