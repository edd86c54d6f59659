function s:FillAndSum()
  let elements = []
  for key in range(1000000)
    call add(elements, key + 1)
  endfor

  let total = 0
  for key in range(1000000)
    let total += elements[key]
  endfor
  return total
endfunction

if s:FillAndSum() == 500000500000
  qall!
endif
