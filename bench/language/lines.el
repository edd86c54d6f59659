;;; -*- lexical-binding: t -*-

;; A buffer of 200000 lines, and an empty one at the end; it keeps what undo needs.
(switch-to-buffer "lines")
(buffer-enable-undo)
(dotimes (_ 200000)
  (insert "a line of some text\n"))
