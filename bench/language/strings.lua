local text, total, hits = "", 0, 0
for number = 1, 500000 do
  text = text .. number
  local place = text:find("77", 1, true) or 0
  if place > 0 and text:sub(place, place + 2) == "770" then
    hits = hits + 1
  end
  total = total + place
  if #text > 1000 then
    text = ""
  end
end
assert(total == 85532172 and hits == 32130, total .. " " .. hits)
