function s:CountPasses()
  let total = 0
  let above = 0
  for round in range(50)
    for pass in range(100000)
      let total += 1
      if total > 2500000
        let above += 1
      endif
    endfor
  endfor
  return [total, above]
endfunction

if s:CountPasses() == [5000000, 2500000]
  qall!
endif
