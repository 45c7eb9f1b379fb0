# Filters a header for Doxygen: repeats a comment above several declarations before each of them, on the line
# of the declaration. Defaulted comparisons, which have no comment, are left out.

/^ *\/\/\// {
  text = text substr($0, index($0, "///") + 3)
  isFirst = 1
  print
  next
}

/^$/ || /^ *(public|protected|private):$/ || /^ *};$/ { text = "" }

/^ *friend .* = default;$/ {
  print ""
  next
}

{
  isComplete = /[;}]$/
  if (text != "" && !isFirst && wasComplete) sub(/^ */, "&/**" text " */ ")
  wasComplete = isComplete
  isFirst = 0
  print
}
