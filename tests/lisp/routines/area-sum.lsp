;;; 统计闭合多段线面积之和，并把结果写成文字
(vl-load-com)

(defun mjh:closed-p (e)
  (= 1 (logand 1 (cdr (assoc 70 (entget e))))))

;; 由图元表按鞋带公式求面积（不含圆弧段），用来核对
(defun mjh:shoelace (e / pts s)
  (setq pts (mapcar 'cdr (vl-remove-if-not (function (lambda (g) (= 10 (car g)))) (entget e)))
        s   0.0)
  (mapcar '(lambda (p q) (setq s (+ s (- (* (car p) (cadr q)) (* (car q) (cadr p))))))
          pts
          (append (cdr pts) (list (car pts))))
  (/ (abs s) 2.0))

(defun mjh:each (ss fun / i)
  (setq i (if ss (sslength ss) 0))
  (while (<= 0 (setq i (1- i)))
    (apply fun (list (ssname ss i)))))

(defun c:MJH (/ ss sum count pt txt open zin)
  (setq zin (getvar "DIMZIN"))
  (setvar "DIMZIN" 0)
  (setq sum 0.0 count 0 open 0)
  (princ "\n选择闭合多段线: ")
  (if (setq ss (ssget '((0 . "LWPOLYLINE"))))
    (progn
      (mjh:each ss
        '(lambda (e)
           (if (mjh:closed-p e)
             (setq sum (+ sum (vlax-curve-getArea e)) count (1+ count))
             (setq open (1+ open)))))
      (if (> open 0) (princ (strcat "\n略去未闭合的 " (itoa open) " 条。")))
      (setq txt (strcat "合计 " (itoa count) " 块，面积 " (rtos (/ sum 666.6667) 2 3) " 亩 (" (rtos sum 2 2) " 平方米)"))
      (princ (strcat "\n" txt))
      (initget 0)
      (if (setq pt (getpoint "\n文字位置 <不标注>: "))
        (entmake (list '(0 . "TEXT") (cons 10 (trans pt 1 0)) '(40 . 5.0) (cons 1 txt) (cons 7 (getvar "TEXTSTYLE"))))))
    (princ "\n没有选到多段线。"))
  (setvar "DIMZIN" zin)
  (princ))
