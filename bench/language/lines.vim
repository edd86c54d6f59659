" A buffer of 200000 lines, and an empty one at the end.
call setline(1, repeat(['a line of some text'], 200000) + [''])
