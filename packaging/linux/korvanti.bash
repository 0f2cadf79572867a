# Completion of korvanti for bash.
_korvanti() {
  local word=${COMP_WORDS[COMP_CWORD]}
  # shellcheck disable=SC2207 # options hold no blanks, and a Mac's own bash knows no mapfile
  COMPREPLY=($(compgen -W '--report --all --json --volumes --map --help' -- "$word"))
}
complete -F _korvanti korvanti
