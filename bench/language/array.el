;;; -*- lexical-binding: t -*-

(defun fill-and-sum ()
  (let ((elements (make-vector 1000000 0)) (total 0))
    (dotimes (key 1000000)
      (aset elements key (1+ key)))
    (dotimes (key 1000000)
      (setq total (+ total (aref elements key))))
    total))

(unless (= (fill-and-sum) 500000500000)
  (kill-emacs 1))
