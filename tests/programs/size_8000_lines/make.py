# SPDX-License-Identifier: Apache-2.0
#
# Writes a class of more than 8,000 lines: 800 functions that call one another.
lines = ["Tarnwick Class Main", "function F0(n : integer) return integer", "  return n", "end function"]
for n in range(1, 800):
    lines += ["function F%d(n : integer) return integer" % n, "var", "  i : integer", "  total : integer", "  for i from 1 to 2 loop",
              "    total := total + i", "  end loop", "  if n > 5 then", "    total := total + n", "  end if",
              "  return F%d(n) + total - 3" % (n - 1), "end function"]
lines += ["function main()", "  PRINT(STR(F799(1)) + \" \" + STR(F799(10)))", "end function", "End class"]
with open("main.cls", "w", encoding="latin-1") as file:
    file.write("\n".join(lines) + "\n")
