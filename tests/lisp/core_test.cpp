// The language itself: reader, printing, binding, control, errors, memory.
#include "lisptest.h"

namespace host {
namespace {

class LispCore : public LispTest {};

TEST_F(LispCore, ReadsAndPrintsEveryKindOfValue) {
    check({
        {"12", "12"},
        {"-7", "-7"},
        {"+5", "5"},
        {"1.0", "1.0"},
        {"1.", "1.0"},
        {".5", "0.5"},
        {"-1.5e3", "-1500.0"},
        {"1e10", "1.0e+10"},
        {"0.00001", "1.0e-05"},
        {"123456.789", "123457.0"},
        {"1234567.0", "1.23457e+06"},
        {"(/ 1 3.0)", "0.333333"},
        {"2147483647", "2147483647"},
        {"2147483648", "2.14748e+09"},
        {"-2147483648", "-2147483648"},
        {"'(1 . 2)", "(1 . 2)"},
        {"'(1 2 . 3)", "(1 2 . 3)"},
        {"'(a . (b c))", "(A B C)"},
        {"'('x)", "((QUOTE X))"},
        {"nil", "nil"},
        {"NIL", "nil"},
        {"()", "nil"},
        {"t", "T"},
        {"'foo.bar", "FOO.BAR"},
        {"'1+", "1+"},
        {"'-", "-"},
        {"\"a\\\"b\\\\c\\n\\t\\101\\U+4E2D\"", "\"a\\\"b\\\\c\\n\\tA中\""},
        {"(strlen \"杆塔\")", "2"},
        {"; comment (\n 3", "3"},
        {"(+ 1 ;| block ) |; 2)", "3"},
        {"1 2 3", "3"},
        {"", "nil"},
        {"(type 'a)", "SYM"},
        {"(mapcar 'type (list 1 1.0 \"\" car (lambda (x) x) '(1) nil))",
         "(INT REAL STR SUBR USUBR LIST nil)"},
    });
}

TEST_F(LispCore, TellsWhatCannotBeRead) {
    check({
        {"(+ 1 2", "!输入的列表有缺陷"},
        {"\"abc", "!输入的字符串有缺陷"},
        {")", "!输入了多余的右括号"},
        {"'( . 2)", "!输入中的点位置不对"},
        {"'(1 . 2 3)", "!输入中的点位置不对"},
        {"'", "!输入的列表有缺陷"},
    });
}

TEST_F(LispCore, BindsDynamicallyAndRestoresLocals) {
    check({
        {"(setq a 1 b 2) (list a b)", "(1 2)"},
        {"(setq x 'y) (set x 5) (list x y)", "(Y 5)"},
        {"(setq a 1) (defun show () a) (defun f (a) (show)) (list (f 9) (show))", "(9 1)"},
        {"(defun f (a / b) (setq b a a (* 2 a)) (list a b)) (setq b 'out) (list (f 4) b)", "((8 4) OUT)"},
        {"(defun f (/ a a) (setq a 3)) (setq a 7) (f) a", "7"},
        {"(defun f (a) (car a)) (setq a 7) (vl-catch-all-apply 'f '(5)) a", "7"},
        {"(defun f () (defun f () 2) 1) (list (f) (f))", "(1 2)"},
        {"((lambda (x / y) (setq y (* x x)) y) 3)", "9"},
        {"(defun c:test () 3) (c:TEST)", "3"},
        {"(foreach i '(1 2) i) i", "nil"},
        {"(setq t 3)", "!不能给受保护的符号赋值: T"},
        {"(defun-q f (x) (* 2 x)) (f 4)", "8"},
        {"(setq g '((x) (+ x 1))) (g 4)", "5"},
        {"(setq l (list (quote lambda) '(x) '(* x x))) (l 5)", "25"},
    });
}

TEST_F(LispCore, BranchesAndLoops) {
    check({
        {"(if nil 1)", "nil"},
        {"(if 0 1 2)", "1"},
        {"(cond ((= 1 2) 'a) ((setq q 5)) (t 'c))", "5"},
        {"(cond)", "nil"},
        {"(and 1 2)", "T"},
        {"(or nil 3)", "T"},
        {"(and)", "T"},
        {"(or)", "nil"},
        {"(progn 1 2 3)", "3"},
        {"(setq i 0) (while (< i 5) (setq i (1+ i)))", "5"},
        {"(while nil)", "nil"},
        {"(setq i 0) (repeat 4 (setq i (+ i 2)))", "8"},
        {"(repeat -1 (car 1))", "nil"},
        {"(setq s nil) (foreach x '(1 2 3) (setq s (cons x s)))", "(3 2 1)"},
        {"(apply '+ '(1 2 3))", "6"},
        {"(apply 'apply '(+ (1 2)))", "3"},
        {"(eval '(+ 1 2))", "3"},
        {"(eval (list '+ 1 'pi))", "4.14159"},
        {"(mapcar '+ '(1 2 3) '(10 20))", "(11 22)"},
        {"(mapcar '(lambda (x) (* x x)) '(1 2 3))", "(1 4 9)"},
        {"(mapcar (function (lambda (x) (1+ x))) '(1 2))", "(2 3)"},
    });
}

TEST_F(LispCore, NamesWhatIsWrongWithACall) {
    check({
        {"(+ 1 nil)", "!参数类型错误: numberp: nil"},
        {"(strcat \"a\" 1)", "!参数类型错误: stringp 1"},
        {"(foo 1)", "!没有函数定义: FOO"},
        {"(5 6)", "!函数错误: 5"},
        {"(car)", "!参数太少"},
        {"(car 1 2)", "!参数太多"},
        {"(car 5)", "!参数类型错误: consp 5"},
        {"((lambda (x) x))", "!参数太少"},
        {"((lambda (x) x) 1 2)", "!参数太多"},
        {"(/ 1 0)", "!除数为零"},
        {"(/ 1.0 0)", "!除数为零"},
        {"(rem 1 0)", "!除数为零"},
        {"(setq 5 6)", "!参数类型错误: symbolp 5"},
        {"(setq a)", "!参数太少"},
        {"(apply 'if '(1 2))", "!函数错误: IF"},
        {"(sqrt -1)", "!函数对参数没有定义: -1"},
        {"(exit)", "!quit / exit abort"},
        {"(length '(1 . 2))", "!参数类型错误: listp (1 . 2)"},
    });
}

TEST_F(LispCore, TellsAnErrorOnceInOneLine) {
    EXPECT_EQ(lisp.evaluate(L"(+ 1 nil)").line, L"; 错误: 参数类型错误: numberp: nil");
    EXPECT_EQ(lisp.evaluate(L"(defun f (x) (+ 1 x)) (defun g () (f nil)) (g)").line,
              L"; 错误: 参数类型错误: numberp: nil，位于 (+ 1 X)");
    EXPECT_EQ(lisp.evaluate(L"(strcat (itoa nil))").expression, L"(ITOA nil)");
}

TEST_F(LispCore, CallsTheErrorHandlerWhileLocalsAreBound) {
    check({
        {"(defun c:f (/ *error* keep) (defun *error* (m) (setq told (list m keep))) (setq keep 3) (car 1))"
         "(c:f)",
         "!参数类型错误: consp 1"},
        {"(list told keep *error*)", "((\"参数类型错误: consp 1\" 3) nil nil)"},
    });
    EXPECT_EQ(lisp.evaluate(L"(c:f)").line, L"");
    // An error inside the handler is told and ends there.
    EXPECT_EQ(lisp.evaluate(L"(defun *error* (m) (car 2)) (car 1)").line,
              L"; 错误: 参数类型错误: consp 2，位于 (CAR 2)");
    run("(defun *error* (m) (princ (strcat \"<\" m \">\")) (princ)) (exit)");
    EXPECT_EQ(printed(), "<quit / exit abort>");
}

TEST_F(LispCore, CatchesErrorsOnRequest) {
    check({
        {"(setq r (vl-catch-all-apply '/ '(1 0))) (vl-catch-all-error-p r)", "T"},
        {"(vl-catch-all-error-message r)", "\"除数为零\""},
        {"(vl-catch-all-apply '(lambda () (exit)))", "#<%catch-all-apply-error%>"},
        {"(vl-catch-all-apply '+ '(1 2))", "3"},
        {"(defun *error* (m) (setq told m)) (vl-catch-all-apply 'car '(1)) told", "nil"},
    });
    EXPECT_EQ(printed(), "");
}

TEST_F(LispCore, EndsEndlessRecursionAndLoopsWithAnError) {
    check({
        {"(defun deep (n) (if (= n 0) 0 (1+ (deep (1- n))))) (deep 20000)", "20000"},
        {"(defun f (x) (1+ (f (+ x 1)))) (f 0)", "!已达到 LISP 堆栈的极限"},
        {"(defun f (x) (apply 'f (list x))) (f 0)", "!已达到 LISP 堆栈的极限"},
    });
    // Deep nesting of data ends in a value or in the error, by the size of the frames.
    run("(setq l nil) (repeat 1000000 (setq l (list l))) (equal l (list l))");
    run("(strlen (vl-prin1-to-string l))");
    EXPECT_EQ(run("(setq l nil)"), "nil");
    EXPECT_EQ(run(std::wstring(2000000, L'(')), "!已达到 LISP 堆栈的极限");
    lisp.surroundings().userBreak = [] { return true; };
    EXPECT_EQ(run("(while t)"), "!函数被取消");
    EXPECT_EQ(run("(defun f () (setq k 0) (while t (setq k (1+ k)))) (f)"), "!函数被取消");
}

TEST_F(LispCore, RunsTailCallsAsLoops) {
    check({
        {"(defun f (n) (if (= n 0) 'done (f (1- n)))) (f 300000)", "DONE"},
        {"(defun f (n s / k) (cond ((= n 0) (list s k)) (t (setq k n) (progn (f (1- n) (+ s k)))))) (f "
         "100000 0.0)",
         "(5.00005e+09 nil)"},
        {"(setq n 'out) (f 3 0) n", "OUT"},
        // Only a call that is the value itself, and of the same function, takes the place.
        {"(defun f (n) (if (= n 0) 0 (1+ (f (1- n))))) (f 100)", "100"},
        {"(defun f (n) (defun f (n) (list 'new n)) (f (1+ n))) (f 1)", "(NEW 2)"},
        {"(defun f (n) (if (= n 0) (g) (f (1- n)))) (defun g () n) (f 3)", "0"},
        {"(defun f (n) (if (= n 0) (car 1) (f))) (f 1)", "!参数太少"},
        {"(defun f (n / *error*) (defun *error* (m) (setq told n)) (if (= n 0) (car 1) (f (1- n)))) (f 2)",
         "!参数类型错误: consp 1"},
        {"(list told n)", "(0 OUT)"},
    });
}

TEST_F(LispCore, TracesCalls) {
    EXPECT_EQ(run("(defun f (n) (if (= n 0) 0 (f (1- n)))) (trace f) (f 1)"), "0");
    EXPECT_EQ(printed(), "\n进入 (F 1)\n  进入 (F 0)\n  结果: 0\n结果: 0");
    EXPECT_EQ(run("(trace strcat) (apply 'strcat '(\"a\" \"b\"))"), "\"ab\"");
    EXPECT_EQ(printed(), "\n进入 (STRCAT \"a\" \"b\")\n结果: \"ab\"");
    EXPECT_EQ(run("(untrace f strcat) (f 1) (strcat \"a\")"), "\"a\"");
    EXPECT_EQ(printed(), "");
    EXPECT_EQ(run("(trace no-such)"), "!没有函数定义: NO-SUCH");
}

TEST_F(LispCore, LoopsDoNotGrowMemory) {
    const char* program = "(setq i 0) (while (< i 2000) (setq i (1+ i) l (list i (strcat \"a\" (itoa i)))))"
                          "(repeat 2000 (mapcar '(lambda (x) (* x 2)) '(1 2 3)))"
                          "(defun f (n / p) (setq p (list n n)) p) (foreach k '(1 2 3 4) (f k)) (setq l nil)";
    run(program);
    const std::size_t before = lisp::heapUse().objects;
    run(program);
    run(program);
    EXPECT_EQ(lisp::heapUse().objects, before);
}

TEST_F(LispCore, RunsOutOfMemoryWithAnError) {
    lisp::HeapUse& use = lisp::heapUse();
    const std::size_t most = std::exchange(use.mostBytes, use.bytes + 1000000);
    EXPECT_EQ(run("(setq l nil) (while t (setq l (cons 1 l)))"), "!LISP 内存不足");
    use.mostBytes = most;
    EXPECT_EQ(run("(setq l nil)"), "nil");
}

TEST_F(LispCore, KnowsItsSymbols) {
    check({
        {"(atoms-family 1 '(\"car\" \"no-such\"))", "(\"CAR\" nil)"},
        {"(setq k 1) (list (boundp 'k) (boundp 'no-such) (boundp 3))", "(T nil nil)"},
        {"(vl-symbol-name 'abc)", "\"ABC\""},
        {"(null (member \"MAPCAR\" (atoms-family 1)))", "nil"},
    });
}

TEST_F(LispCore, FreesEverythingAtTheEnd) {
    const std::size_t before = lisp::heapUse().objects;
    {
        LispInterpreter other;
        other.evaluate(L"(defun f (x) (g x)) (defun g (x) (f x)) (setq a (list f g '(1 2 \"x\")))");
    }
    EXPECT_EQ(lisp::heapUse().objects, before);
}

} // namespace
} // namespace host
