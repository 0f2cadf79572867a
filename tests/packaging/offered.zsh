# offered.zsh WORD, in the project: prints what zsh offers for a word behind korvanti. It completes on a terminal only, so a second
# zsh gets one, which tells what it adds to its list before it shows it.
zmodload zsh/zpty
zpty terminal "TERM=dumb zsh -f -i"
zpty -w terminal "fpath=($PWD/packaging/linux \$fpath); autoload -Uz compinit; compinit -D -u; PS1="
zpty -w terminal 'compadd() {
  [[ " $* " != *\ -[OAD]\ * ]] || { builtin compadd "$@"; return }
  local -a added; builtin compadd -O added "$@"; print -r -- "OFFERED $added END"; builtin compadd "$@"
}'
zpty -w terminal 'print REA""DY'
zpty -r -m terminal said '*READY*'
zpty -w -n terminal "korvanti $1"$'\t'
zpty -r -m terminal said '*OFFERED*END*'
zpty -d terminal
print -l -- ${=${said#*OFFERED }%% END*}
