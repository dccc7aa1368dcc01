;|  批量改名
    图层或块的名字里，把一段文字换成另一段；
    文字内容也可以一起换。 |;
(defun plgm:replace (new old str / pos from)
  (setq from 0)
  (while (setq pos (vl-string-search old str from))
    (setq str  (strcat (substr str 1 pos) new (substr str (+ pos 1 (strlen old))))
          from (+ pos (strlen new))))
  str)

(defun plgm:names (table / rec out)
  (while (setq rec (tblnext table (null rec)))
    (setq out (cons (cdr (assoc 2 rec)) out)))
  (vl-remove-if '(lambda (s) (wcmatch s "`**,*|*,0")) (reverse out)))

(defun plgm:rename (table old new / n e d to)
  (setq n 0)
  (foreach name (plgm:names table)
    (setq to (plgm:replace new old name))
    (cond
      ((= to name))
      ((tblsearch table to)
       (princ (strcat "\n" to " 已存在，" name " 不改。")))
      ((not (snvalid to))
       (princ (strcat "\n名字无效: " to)))
      (t
       (setq e (tblobjname table name)
             d (entget e))
       (if (= table "BLOCK")
         (setq d (entget (cdr (assoc 330 d)))))
       (if (entmod (subst (cons 2 to) (assoc 2 d) d))
         (setq n (1+ n))))))
  n)

;; 查找内容里的通配符按字面理解
(defun plgm:literal (s)
  (vl-list->string
    (apply 'append
           (mapcar '(lambda (c) (if (member c '(35 64 46 42 63 126 91 93 45 44 96)) (list 96 c) (list c)))
                   (vl-string->list s)))))

(defun plgm:texts (old new / ss i d v n)
  (setq n 0)
  (if (setq ss (ssget "_X" (list '(0 . "TEXT,MTEXT") (cons 1 (strcat "*" (plgm:literal old) "*")))))
    (repeat (setq i (sslength ss))
      (setq d (entget (ssname ss (setq i (1- i))))
            v (cdr (assoc 1 d)))
      (entmod (subst (cons 1 (plgm:replace new old v)) (cons 1 v) d))
      (setq n (1+ n))))
  n)

(defun c:PLGM (/ kind old new n)
  (initget "Layer Block Text")
  (setq kind (getkword "\n改名对象 [图层(L)/块(B)/文字(T)] <图层>: "))
  (if (null kind) (setq kind "Layer"))
  (setq old (getstring t "\n查找: ")
        new (getstring t "\n换成: "))
  (if (= old "")
    (princ "\n没有要查找的内容。")
    (progn
      (setq n (cond
                ((= kind "Layer") (plgm:rename "LAYER" old new))
                ((= kind "Block") (plgm:rename "BLOCK" old new))
                (t (plgm:texts old new))))
      (princ (strcat "\n改了 " (itoa n) " 处。"))))
  (princ))
