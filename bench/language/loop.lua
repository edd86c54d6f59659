local total, above = 0, 0
for _ = 1, 50 do
  for _ = 1, 100000 do
    total = total + 1
    if total > 2500000 then
      above = above + 1
    end
  end
end
assert(total == 5000000 and above == 2500000)
