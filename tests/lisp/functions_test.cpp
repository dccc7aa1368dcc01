// The function families that need no drawing.
#include "lisptest.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace host {
namespace {

class LispFunctions : public LispTest {};

TEST_F(LispFunctions, Arithmetic) {
    check({
        {"(list (+) (+ 1) (+ 1 2 3) (+ 1 2.0))", "(0 1 6 3.0)"},
        {"(list (-) (- 5) (- 5 2 1) (- 5.5 1))", "(0 -5 2 4.5)"},
        {"(list (*) (* 2 3) (* 2 0.5))", "(0 6 1.0)"},
        {"(list (/ 7 2) (/ 7 2.0) (/ -7 2) (/ 20 2 5))", "(3 3.5 -3 2)"},
        {"(+ 2147483647 1)", "2.14748e+09"},
        {"(* 65536 65536)", "4.29497e+09"},
        {"(/ -2147483648 -1)", "2.14748e+09"},
        {"(list (rem 7 3) (rem -7 3) (rem 7.5 2) (rem -2147483648 -1))", "(1 -1 1.5 0)"},
        {"(list (1+ 1) (1- 1.5) (abs -3) (abs -2.5) (max 1 2.5 2) (min 3 1) (max 1 2))",
         "(2 0.5 3 2.5 2.5 1 2)"},
        {"(list (expt 2 10) (expt 2.0 0.5) (expt 2 31) (exp 0) (log 1) (sqrt 9))",
         "(1024 1.41421 2.14748e+09 1.0 0.0 3.0)"},
        {"(list (atan 1) (atan 1 -1) (sin 0) (cos pi))", "(0.785398 2.35619 0.0 -1.0)"},
        {"(list (fix 2.9) (fix -2.9) (float 3) (fix 3e9) (gcd 12 -18))", "(2 -2 3.0 3.0e+09 6)"},
        {"(list (~ 5) (logand 7 12) (logior 1 8) (logxor 5 1) (lsh 1 31) (lsh -1 -1) (lsh 1 40))",
         "(-6 4 9 4 -2147483648 2147483647 0)"},
        {"(list (boole 1 12 10) (boole 6 12 10) (boole 7 12 10) (boole 8 12 10))", "(8 6 14 -15)"},
        {"(list (lcm 4 6) (lcm 0 5) (gcd 0 0) (gcd 7))", "(12 0 0 7)"},
        {"(lcm 65536 65535)", "!LCM: 结果超出整数范围"},
        {"(list (expt 2 -1) (expt 0 0) (expt -8 3) (/ 5) (rem 5) (exp 1) (log 10))",
         "(0.5 1 -512 5 5 2.71828 2.30259)"},
        {"(list (atan 0 -1) (atan -1.0) (abs -2147483648) (- -2147483648) (fix -0.5) (max) (min 2 2.0))",
         "(3.14159 -0.785398 2.14748e+09 2.14748e+09 0 0 2.0)"},
        {"(list (1- -2147483648) (1+ 2147483647) (lsh 8 -2) (boole 2 12 10) (boole 4 12 10) (logand))",
         "(-2.14748e+09 2.14748e+09 2 4 2 0)"},
        {"(list (zerop 0.0) (minusp -1) (numberp \"1\"))", "(T T nil)"},
    });
}

TEST_F(LispFunctions, Comparison) {
    check({
        {"(list (= 1 1.0) (= \"a\" \"a\") (= 1 1 2) (= 'a 'a) (= nil nil) (= 1 \"1\"))", "(T T nil T T nil)"},
        {"(list (/= 1 2) (/= 1 1) (< 1 2 3) (< 1 3 2) (<= 1 1) (> \"b\" \"a\") (>= 2 2.0))",
         "(T nil T nil T T T)"},
        {"(< 1 \"a\")", "!参数类型错误: 无法比较: 1 \"a\""},
        {"(< nil 1)", "!参数类型错误: numberp: nil"},
        {"(setq l '(1 2)) (list (eq l l) (eq l '(1 2)) (equal l '(1 2)) (equal 1 1.0))", "(T nil T T)"},
        {"(list (equal 1.0 1.0001) (equal 1.0 1.0001 0.001) (equal '(1.0 2.0) '(1.0 2.01) 0.1))",
         "(nil T T)"},
    });
}

TEST_F(LispFunctions, Lists) {
    check({
        {"(list (car '(1 2)) (cdr '(1 2)) (cadr '(1 2 3)) (cddr '(1 2 3)) (caddr '(1 2 3)) (car nil))",
         "(1 (2) 2 (3) 3 nil)"},
        {"(list (cadar '((1 2) 3)) (cdadr '(1 (2 3))) (cadddr '(1 2 3 4)) (caaar '(((7)))))", "(2 (3) 4 7)"},
        {"(list (nth 1 '(a b)) (nth 5 '(a b)) (length '(1 2 3)) (last '(1 2 3)) (last nil))",
         "(B nil 3 3 nil)"},
        {"(append '(1) nil '(2 3) '(4))", "(1 2 3 4)"},
        {"(append '(1) 2)", "(1 . 2)"},
        {"(reverse '(1 2 3))", "(3 2 1)"},
        {"(assoc 8 '((0 . \"LINE\") (8 . \"0\")))", "(8 . \"0\")"},
        {"(assoc \"a\" '((\"b\" 1) (\"a\" 2)))", "(\"a\" 2)"},
        {"(assoc 1 '(1 2))", "!关联表有缺陷: (1 2)"},
        {"(subst 'x 'b '(a b (b) b))", "(A X (B) X)"},
        {"(member '(2) '(1 (2) 3))", "((2) 3)"},
        {"(list (listp nil) (listp '(1)) (atom nil) (atom '(1)) (vl-consp nil))", "(T T T nil nil)"},
        {"(vl-remove 1 '(1 2 1 3))", "(2 3)"},
        {"(vl-remove-if 'minusp '(1 -2 3))", "(1 3)"},
        {"(vl-remove-if-not '(lambda (x) (> x 1)) '(1 2 3))", "(2 3)"},
        {"(list (vl-member-if 'minusp '(1 -2 3)) (vl-position 3 '(1 2 3)) (vl-position 9 '(1)))",
         "((-2 3) 2 nil)"},
        {"(list (vl-some 'minusp '(1 -1)) (vl-every '< '(1 2) '(2 3)) (vl-every 'minusp nil))", "(T T T)"},
        {"(list (vl-list* 1 2 '(3)) (vl-list* 1 2) (vl-list-length '(1 . 2)) (vl-list-length nil))",
         "((1 2 3) (1 . 2) nil 0)"},
        {"(vl-sort '(3 1 2 1) '<)", "(1 1 2 3)"},
        {"(vl-sort '((2 a) (1 b) (2 c)) '(lambda (x y) (< (car x) (car y))))", "((1 B) (2 A) (2 C))"},
        {"(vl-sort-i '(3 1 2) '>)", "(0 2 1)"},
        {"(length (vl-sort '(5 4 3 2 1 6 7) '(lambda (a b) t)))", "7"},
        {"(acad_strlsort '(\"b\" \"C\" \"a\"))", "(\"a\" \"b\" \"C\")"},
    });
}

TEST_F(LispFunctions, Strings) {
    check({
        {"(list (strcat) (strcat \"a\" \"b\" \"杆\") (strlen) (strlen \"ab\" \"c\"))", "(\"\" \"ab杆\" 0 3)"},
        {"(list (substr \"abcd\" 2) (substr \"abcd\" 2 2) (substr \"abcd\" 9) (substr \"杆塔图\" 2 1))",
         "(\"bcd\" \"bc\" \"\" \"塔\")"},
        {"(substr \"a\" 0)", "!参数值错误: 正数 0"},
        {"(list (strcase \"aBc\") (strcase \"aBc\" t) (ascii \"A\") (chr 66) (ascii \"\") (chr 0))",
         "(\"ABC\" \"abc\" 65 \"B\" 0 \"\")"},
        {"(list (itoa -5) (atoi \"12abc\") (atoi \"x\") (atoi \" 3.9\") (atof \"1e2x\") (atof \"-.5\"))",
         "(\"-5\" 12 0 3 100.0 -0.5)"},
        {"(list (read \"(a b)\") (read \"\") (read \"12 13\"))", "((A B) nil 12)"},
        {"(list (vl-string-search \"b\" \"abcb\") (vl-string-search \"b\" \"abcb\" 2) (vl-string-search "
         "\"x\" \"a\"))",
         "(1 3 nil)"},
        {"(list (vl-string-position 98 \"abcb\") (vl-string-position 98 \"abcb\" nil t))", "(1 3)"},
        {"(list (vl-string-subst \"X\" \"b\" \"abcb\") (vl-string-subst \"X\" \"b\" \"abcb\" 2))",
         "(\"aXcb\" \"abcX\")"},
        {"(list (vl-string-trim \" x\" \"xx a x\") (vl-string-left-trim \" \" \" a \") "
         "(vl-string-right-trim \" \" \" a \") (vl-string-trim \" \" \"  \"))",
         "(\"a\" \"a \" \" a\" \"\")"},
        {"(vl-string-translate \"abc\" \"12\" \"aabcd\")", "\"1122d\""},
        {"(list (vl-string->list \"AB\") (vl-list->string '(65 66)) (vl-string-elt \"AB\" 1))",
         "((65 66) \"AB\" 66)"},
        {"(list (vl-prin1-to-string '(\"a\" 1.5)) (vl-princ-to-string '(\"a\" 1.5)))",
         "(\"(\\\"a\\\" 1.5)\" \"(a 1.5)\")"},
        {"(list (vl-string-mismatch \"abc\" \"abd\") (vl-string-mismatch \"ABC\" \"abd\" 0 0 t))", "(2 2)"},
    });
}

TEST_F(LispFunctions, Geometry) {
    check({
        {"(distance '(0 0) '(3 4))", "5.0"},
        {"(distance '(0 0 12) '(3 4))", "5.0"},
        {"(distance '(0 0 0) '(2 3 6))", "7.0"},
        {"(angle '(0 0) '(0 -1))", "4.71239"},
        {"(polar '(1 1) 0 2)", "(3.0 1.0)"},
        {"(polar '(1 1 5) (/ pi 2) 2)", "(1.0 3.0 5.0)"},
        {"(inters '(0 0) '(2 2) '(0 2) '(2 0))", "(1.0 1.0)"},
        {"(inters '(0 0) '(1 1) '(0 4) '(4 0))", "nil"},
        {"(inters '(0 0) '(1 1) '(0 4) '(4 0) nil)", "(2.0 2.0)"},
        {"(inters '(0 0) '(1 0) '(0 1) '(1 1) nil)", "nil"},
        {"(inters '(0 0 0) '(2 2 0) '(0 2 1) '(2 0 1))", "nil"},
        {"(distance '(1) '(2))", "!参数类型错误: 二维/三维点: (1)"},
    });
}

TEST_F(LispFunctions, Output) {
    EXPECT_EQ(run("(princ \"a\\\"b\") (prin1 \"a\\\"b\") (print 'x) (terpri) (prompt \"p\") (princ)"), "");
    EXPECT_EQ(printed(), "a\"b\"a\\\"b\"\nX \np");
}

class LispFiles : public LispTest {
protected:
    LispFiles() {
        folder = std::filesystem::temp_directory_path() / ("lisp-files-" + std::to_string(::getpid()));
        std::filesystem::create_directories(folder / "data/sub");
        std::filesystem::create_directories(folder / "code");
        std::filesystem::create_directories(folder / "other");
        lisp.surroundings().dataFolders = [this] { return std::vector{folder / "data"}; };
        lisp.surroundings().codeFolders = [this] { return std::vector{folder / "code"}; };
        lisp.setValue(L"DATA", lisp::makeText((folder / "data/").wstring()));
        lisp.setValue(L"CODE", lisp::makeText((folder / "code/").wstring()));
        lisp.setValue(L"OTHER", lisp::makeText((folder / "other/").wstring()));
    }
    ~LispFiles() override { std::filesystem::remove_all(folder); }

    void put(const char* name, std::string_view bytes) {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }

    std::filesystem::path folder;
};

TEST_F(LispFiles, WritesAndReadsLines) {
    check({
        {"(setq f (open (strcat data \"a.txt\") \"w\")) (write-line \"杆号\" f) (princ 12 f) (write-char 33 "
         "f)"
         "(prin1 \"q\" f) (close f)",
         "nil"},
        {"(setq f (open (strcat data \"a.txt\") \"a\")) (write-line \"\" f) (close f)", "nil"},
        {"(setq f (open (strcat data \"a.txt\") \"r\")) (setq r (list (read-line f) (read-char f) (read-line "
         "f) "
         "(read-line f))) (close f) r",
         "(\"杆号\" 49 \"2!\\\"q\\\"\" nil)"},
        {"(read-line f)", ("!文件没有打开: " + (folder / "data/a.txt").string()).c_str()},
        {"(open (strcat data \"none.txt\") \"r\")", "nil"},
        {"(vl-file-size (strcat data \"a.txt\"))", "14"},
        {"(vl-directory-files data \"*.TXT\" 1)", "(\"a.txt\")"},
    });
    put("data/gbk.txt", "\xB8\xCB\xCB\xFE\r\nx");
    EXPECT_EQ(run("(setq f (open (strcat data \"gbk.txt\") \"r\")) (list (read-line f) (read-line f))"),
              "(\"杆塔\" \"x\")");
}

TEST_F(LispFiles, KeepsToItsFolders) {
    put("other/secret.txt", "x");
    put("data/evil.lsp", "(setq ran t)");
    put("code/good.lsp", "(setq ran 'good) (defun c:good () 1)");
    std::filesystem::create_symlink(folder / "other", folder / "data/link");
    check({
        {"(open (strcat other \"secret.txt\") \"r\")", "nil"},
        {"(open (strcat data \"../other/secret.txt\") \"r\")", "nil"},
        {"(open (strcat data \"link/secret.txt\") \"r\")", "nil"},
        {"(open (strcat code \"good.lsp\") \"w\")", "nil"},
        {"(vl-file-delete (strcat other \"secret.txt\"))", "nil"},
        {"(load (strcat data \"evil.lsp\"))",
         ("!LOAD 失败: \"" + (folder / "data/").string() +
          "evil.lsp\"，程序只从支持文件夹和变量 TRUSTEDPATHS 所列的文件夹加载")
             .c_str()},
        {"(load (strcat data \"evil\") 'no)", "NO"},
        {"ran", "nil"},
        {"(load \"good\")", "C:GOOD"},
        {"(load \"GOOD.LSP\") ran", "GOOD"},
        {"(vl-file-copy (strcat other \"secret.txt\") (strcat data \"got.txt\"))", "nil"},
        {"(vl-file-copy (strcat data \"evil.lsp\") (strcat code \"evil.lsp\"))", "nil"},
        {"(vl-file-rename (strcat data \"evil.lsp\") (strcat code \"evil.lsp\"))", "nil"},
        {"(vl-directory-files (strcat data \"link\"))", "nil"},
        {"(list (vl-file-size (strcat other \"secret.txt\")) (vl-file-systime (strcat data \"link\")))",
         "(nil nil)"},
    });
    EXPECT_TRUE(std::filesystem::exists(folder / "other/secret.txt"));
}

TEST_F(LispFiles, LoadingTellsWhatItCannotRead) {
    put("code/open.lsp", "(setq a 1)\n(defun f ()\n  (car a)\n");
    put("code/quote.lsp", ";c\n(setq a\n \"x)\n");
    put("code/extra.lsp", "(setq b 2)\n\n(setq c 3))\n");
    put("code/late.lsp", "(setq later (list 'loaded)) (defun c:late () (setq later (cons 1 later)))");
    check({
        {"(load \"open\")", "!输入的列表有缺陷，open.lsp 第 2 行"},
        {"(load \"quote\")", "!输入的字符串有缺陷，quote.lsp 第 3 行"},
        {"(load \"extra\")", "!输入了多余的右括号，extra.lsp 第 3 行"},
        {"(list a b c)", "(1 2 3)"},
        {"(load \"none\" '(lambda () 5))", "5"},
        {"(defun instead () 'failed) (load \"none\" 'instead)", "FAILED"},
        {"(load \"none\" \"no\")", "\"no\""},
        {"(autoload \"late\" '(\"LATE\" \"OTHER\")) (list later (c:late) (c:late))",
         "(nil (1 LOADED) (1 1 LOADED))"},
    });
}

TEST_F(LispFiles, ManagesFiles) {
    put("data/a.txt", "one\n");
    check({
        {"(list (vl-file-copy (strcat data \"a.txt\") (strcat data \"b.txt\")) (vl-file-copy (strcat data "
         "\"a.txt\") (strcat data \"b.txt\")) (vl-file-copy (strcat data \"a.txt\") (strcat data \"b.txt\") "
         "t) "
         "(vl-file-size (strcat data \"b.txt\")))",
         "(4 nil 4 8)"},
        {"(list (vl-file-rename (strcat data \"b.txt\") (strcat data \"c.txt\")) (vl-file-rename (strcat "
         "data "
         "\"c.txt\") (strcat data \"a.txt\")) (vl-file-delete (strcat data \"c.txt\")))",
         "(T nil T)"},
        {"(list (vl-directory-files data nil 1) (vl-directory-files data nil -1) (vl-directory-files data "
         "\"s*\"))",
         "((\"a.txt\") (\".\" \"..\" \"sub\") (\"sub\"))"},
        {"(list (vl-mkdir (strcat data \"new\")) (vl-file-directory-p (strcat data \"new\")) "
         "(vl-file-directory-p "
         "(strcat data \"a.txt\")))",
         "(T T nil)"},
        {"(list (length (vl-file-systime (strcat data \"a.txt\"))) (vl-file-systime (strcat data \"none\")))",
         "(8 nil)"},
        {"(list (vl-filename-base \"c:\\\\图\\\\a.b.dwg\") (vl-filename-extension \"c:\\\\a.b\\\\c\") "
         "(vl-filename-directory \"/x/y/z.lsp\"))",
         "(\"a.b\" nil \"/x/y\")"},
        {"(setq n (vl-filename-mktemp \"tmp.lst\" data)) (close (open n \"w\"))", "nil"},
        {"(list (vl-filename-base n) (vl-filename-extension n) (vl-filename-base (vl-filename-mktemp \"tmp\" "
         "data "
         "\"lst\")))",
         "(\"tmp001\" \".lst\" \"tmp002\")"},
    });
}

} // namespace
} // namespace host
