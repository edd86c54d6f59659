;;; -*- lexical-binding: t -*-

(defun fib (n)
  (if (< n 2)
      n
    (+ (fib (- n 1)) (fib (- n 2)))))

(unless (= (fib 27) 196418)
  (kill-emacs 1))
