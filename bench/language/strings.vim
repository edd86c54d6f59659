function s:AppendNumbers()
  let text = ''
  let total = 0
  let hits = 0
  for number in range(1, 500000)
    let text ..= number
    let place = stridx(text, '77')
    if place >= 0 && strpart(text, place, 3) ==# '770'
      let hits += 1
    endif
    let total += place + 1
    if strlen(text) > 1000
      let text = ''
    endif
  endfor
  return [total, hits]
endfunction

if s:AppendNumbers() == [85532172, 32130]
  qall!
endif
