function s:Fib(n)
  if a:n < 2
    return a:n
  endif
  return s:Fib(a:n - 1) + s:Fib(a:n - 2)
endfunction

if s:Fib(27) == 196418
  qall!
endif
