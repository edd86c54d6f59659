
;; Goes on from lines.el: "> " before each line but the empty one at the end.
(defun quote-lines ()
  (goto-char (point-min))
  (while (not (eobp))
    (insert "> ")
    (forward-line 1)))

(quote-lines)
(unless (and (= (point) 4400001)
             (progn (forward-line -1) (looking-at "> a line of some text\n\\'")))
  (kill-emacs 1))
