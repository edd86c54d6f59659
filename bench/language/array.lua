local elements = {}
for key = 1, 1000000 do
  elements[key] = key
end

local total = 0
for key = 1, 1000000 do
  total = total + elements[key]
end
assert(total == 500000500000)
