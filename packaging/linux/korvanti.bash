# Completion of korvanti for bash.
_korvanti() {
  local word=${COMP_WORDS[COMP_CWORD]}
  mapfile -t COMPREPLY < <(compgen -W '--report --all --json --volumes --map --help' -- "$word")
}
complete -F _korvanti korvanti
