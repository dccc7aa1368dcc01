;;; 图层整理：按对照表归并图层，统一颜色，删去清空了的图层
(setq *tczl-map*
  '(("等高线*,DGX*" "地形-等高线" 34)
    ("*道路*,ROAD*" "地形-道路"   1)
    ("*房屋*,HOUSE*" "地形-房屋"   6)))

(defun tczl:target (name)
  (vl-some '(lambda (row) (if (wcmatch (strcase name) (strcase (car row))) (cdr row))) *tczl-map*))

(defun tczl:ensure (name color / rec)
  (if (setq rec (tblobjname "LAYER" name))
    (entmod (subst (cons 62 color) (assoc 62 (entget rec)) (entget rec)))
    (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLayerTableRecord")
                   (cons 2 name) '(70 . 0) (cons 62 color)))))

(defun tczl:move (from to / ss i e d n)
  (setq n 0)
  (if (setq ss (ssget "X" (list (cons 8 from))))
    (repeat (setq i (sslength ss))
      (setq e (ssname ss (setq i (1- i)))
            d (entget e))
      (if (entmod (subst (cons 8 to) (assoc 8 d) d)) (setq n (1+ n)))))
  n)

(defun c:TCZL (/ lay names target moved empty)
  (setq lay (tblnext "LAYER" t))
  (while lay
    (setq names (cons (cdr (assoc 2 lay)) names)
          lay   (tblnext "LAYER")))
  (setq moved 0)
  (foreach name (acad_strlsort names)
    (if (and (setq target (tczl:target name)) (/= (strcase name) (strcase (car target))))
      (progn
        (tczl:ensure (car target) (cadr target))
        (setq moved (+ moved (tczl:move name (car target))))
        (if (= 0 (logand 4 (cdr (assoc 70 (tblsearch "LAYER" name)))))
          (setq empty (cons name empty))))))
  (if (member (getvar "CLAYER") empty) (setvar "CLAYER" "0"))
  (foreach name empty (entdel (tblobjname "LAYER" name)))
  (princ (strcat "\n移动 " (itoa moved) " 个对象，删去 " (itoa (length empty)) " 个图层。"))
  (princ))
