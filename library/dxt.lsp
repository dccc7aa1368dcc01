;; The symbol library $DXT: linetypes and blocks of the map symbols, in millimetres on paper.
;; Run by the build in a new drawing, which it fills and leaves to be saved.

;; Linetypes that the symbols' lines are drawn with.
(command "_.-LINETYPE" "_L" "DASHED,CENTER2,HIDDEN,DOT" "acad.lin" "")
(command "_.-LINETYPE" "_L" "ACITY,E_line" "dxt.lin" "")

;; Entities of the block that is being made; they look as the block's references do.
(defun dxt-line (from to)
  (entmake (list '(0 . "LINE") '(8 . "0") '(62 . 0) '(6 . "BYBLOCK") (cons 10 from) (cons 11 to))))
(defun dxt-lines (points)
  (while (cdr points)
    (dxt-line (car points) (cadr points))
    (setq points (cdr points))))

(defun dxt-begin (name)
  (entmake (list '(0 . "BLOCK") (cons 2 name) '(70 . 0) '(10 0.0 0.0 0.0))))
(defun dxt-end ()
  (entmake '((0 . "ENDBLK"))))

;; Slope marks hang on the edge of a slope at the origin and point away from it along Y: up in the blocks for
;; the left side (L...), down in those for the right side (R...). side is 1.0 or -1.0.

;; A natural scarp: a short tick.
(defun dxt-dpw (side)
  (dxt-line '(0.0 0.0 0.0) (list 0.0 (* 1.0 side) 0.0)))
;; A natural slope: its long tick, drawn between short ones. Along a river bank it reaches to the hatch.
(defun dxt-xpw (side)
  (dxt-line '(0.0 0.0 0.0) (list 0.0 (* 2.5 side) 0.0)))
;; A reinforced slope: a short tick with a foot.
(defun dxt-xpj (side)
  (dxt-line '(0.0 0.0 0.0) (list 0.0 (* 1.0 side) 0.0))
  (dxt-line (list -0.3 (* 1.0 side) 0.0) (list 0.3 (* 1.0 side) 0.0)))
;; A reinforced scarp: a tooth, as wide as the gap to the next one.
(defun dxt-dpj (side)
  (dxt-lines (list '(-0.75 0.0 0.0) (list -0.75 (* 0.8 side) 0.0) (list 0.75 (* 0.8 side) 0.0)
                   '(0.75 0.0 0.0))))

(foreach mark '(("DPW" . dxt-dpw) ("XPW" . dxt-xpw) ("XPJ" . dxt-xpj) ("DPJ" . dxt-dpj))
  (foreach side '(("L" . 1.0) ("R" . -1.0))
    (dxt-begin (strcat (car side) (car mark)))
    (apply (cdr mark) (list (cdr side)))
    (dxt-end)))

;; Bridge marks at the crossing of a road with what it crosses: two parapets with wings at 45 degrees. dxt-turn
;; puts them along X or, turned a quarter, along Y.
(setq dxt-half-length 3.0 dxt-half-width 2.0 dxt-wing 0.7)
(defun dxt-turn (point vertical)
  (if vertical (list (- (cadr point)) (car point) 0.0) point))
(defun dxt-parapet (side vertical / y tip)
  (setq y (* dxt-half-width side) tip (+ dxt-half-length dxt-wing))
  (dxt-lines
    (mapcar '(lambda (point) (dxt-turn point vertical))
            (list (list (- tip) (* (+ dxt-half-width dxt-wing) side) 0.0)
                  (list (- dxt-half-length) y 0.0)
                  (list dxt-half-length y 0.0)
                  (list tip (* (+ dxt-half-width dxt-wing) side) 0.0)))))
;; What passes below is hidden between the parapets of an overbridge.
(defun dxt-mask (vertical / x y)
  (setq x (if vertical dxt-half-width dxt-half-length) y (if vertical dxt-half-length dxt-half-width))
  (entmake (list '(0 . "WIPEOUT") '(100 . "AcDbEntity") '(8 . "0") '(100 . "AcDbWipeout") '(90 . 0)
                 (list 10 (- x) (- y) 0.0) (list 11 (* 2.0 x) 0.0 0.0) (list 12 0.0 (* 2.0 y) 0.0)
                 '(13 1.0 1.0 0.0) '(70 . 7) '(280 . 1) '(281 . 50) '(282 . 50) '(283 . 0)
                 '(71 . 1) '(91 . 2) '(14 -0.5 -0.5 0.0) '(14 0.5 0.5 0.0))))

(foreach mark '(("bridge1" T T) ("bridge2" nil T) ("bridge3" nil nil) ("bridge4" T nil))
  (dxt-begin (car mark))
  (if (caddr mark) (dxt-mask (cadr mark)))
  (dxt-parapet 1.0 (cadr mark))
  (dxt-parapet -1.0 (cadr mark))
  (dxt-end))
(princ)
