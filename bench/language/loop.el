;;; -*- lexical-binding: t -*-

(defun count-passes ()
  (let ((total 0) (above 0))
    (dotimes (_ 50)
      (dotimes (_ 100000)
        (setq total (1+ total))
        (when (> total 2500000)
          (setq above (1+ above)))))
    (list total above)))

(unless (equal (count-passes) '(5000000 2500000))
  (kill-emacs 1))
