;;; -*- lexical-binding: t -*-

(defun append-numbers ()
  (let ((text "") (number 0) (total 0) (hits 0))
    (while (< number 500000)
      (setq number (1+ number)
            text (concat text (number-to-string number)))
      (let ((place (string-search "77" text)))
        (when place
          (when (string= (substring text place (min (+ place 3) (length text))) "770")
            (setq hits (1+ hits)))
          (setq total (+ total place 1))))
      (when (> (length text) 1000)
        (setq text "")))
    (list total hits)))

(unless (equal (append-numbers) '(85532172 32130))
  (kill-emacs 1))
