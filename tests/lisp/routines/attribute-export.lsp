;;; 块属性导出为 CSV：每个块一行，表头为各标记
(defun sxdc:attributes (blk / e d out)
  (setq e (entnext blk))
  (while (and e (/= "SEQEND" (cdr (assoc 0 (setq d (entget e))))))
    (if (= "ATTRIB" (cdr (assoc 0 d)))
      (setq out (cons (cons (cdr (assoc 2 d)) (cdr (assoc 1 d))) out)))
    (setq e (entnext e)))
  (reverse out))

(defun sxdc:quote (s)
  (if (wcmatch s "*`,*,*\"*")
    (progn
      (setq s (vl-list->string
                (apply 'append
                       (mapcar '(lambda (c) (if (= c 34) (list 34 34) (list c))) (vl-string->list s)))))
      (strcat "\"" s "\""))
    s))

(defun sxdc:join (lst sep)
  (if lst
    (apply 'strcat (cons (car lst) (mapcar '(lambda (s) (strcat sep s)) (cdr lst))))
    ""))

(defun c:SXDC (/ name ss i rows tags file f zin)
  (setq zin (getvar "DIMZIN"))
  (setvar "DIMZIN" 0)
  (setq name (getstring "\n块名 <全部>: "))
  (if (= name "") (setq name "*"))
  (cond
    ((null (setq ss (ssget "_X" (list '(0 . "INSERT") '(66 . 1) (cons 2 name)))))
     (princ "\n没有带属性的块。"))
    ((null (setq file (getfiled "导出到" "" "csv" 1)))
     (princ "\n已取消。"))
    ((null (setq f (open file "w")))
     (princ (strcat "\n不能写文件 " file)))
    (t
     (repeat (setq i (sslength ss))
       (setq rows (cons (cons (cdr (assoc 10 (entget (ssname ss (setq i (1- i))))))
                              (sxdc:attributes (ssname ss i)))
                        rows)))
     (foreach row rows
       (foreach att (cdr row)
         (if (not (member (car att) tags)) (setq tags (append tags (list (car att)))))))
     (setq rows (vl-sort rows '(lambda (a b) (< (caar a) (caar b)))))
     (write-line (sxdc:join (append '("X" "Y") tags) ",") f)
     (foreach row rows
       (write-line
         (sxdc:join
           (append (list (rtos (caar row) 2 3) (rtos (cadar row) 2 3))
                   (mapcar '(lambda (tag) (sxdc:quote (cond ((cdr (assoc tag (cdr row)))) (""))))
                           tags))
           ",")
         f))
     (close f)
     (princ (strcat "\n已导出 " (itoa (length rows)) " 行。"))))
  (setvar "DIMZIN" zin)
  (princ))
