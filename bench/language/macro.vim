" Goes on from lines.vim: "> " before each line but the empty one at the end.
function s:QuoteLines()
  1,$-1normal! I> 
  normal! j
endfunction

call s:QuoteLines()
if getline('.') == '' && line2byte('.') == 4400001 && getline(200000) ==# '> a line of some text'
  qall!
endif
