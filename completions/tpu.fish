# Completion of tpu's arguments for fish.
complete -c tpu -l command -r -d 'Run this source after the start-up file'
complete -c tpu -l section -r -d 'Restore this section file'
complete -c tpu -l nosection -d 'Restore no section file'
complete -c tpu -l test -r -d 'Run a script without a terminal'
complete -c tpu -l version -d 'Print the version and exit'
complete -c tpu -l help -d 'Print how the program is called and exit'
