# Completion of tambra for bash. The program itself tells what may come next.
_tambra() {
  local cur cword words lines=() word stem=
  words=("${COMP_WORDS[@]}") cword=$COMP_CWORD cur=${COMP_WORDS[COMP_CWORD]}
  # One word for what stands together on the line, "--answer=20" or "20=Replace".
  declare -F _get_comp_words_by_ref >/dev/null && _get_comp_words_by_ref -n "=:" cur words cword
  mapfile -t lines < <("${1/#\~\//$HOME/}" complete bash "${words[@]:1:cword}" 2>/dev/null)
  case ${lines[0]-} in
    files | packages)
      if declare -F _filedir >/dev/null; then
        if [[ ${lines[0]} == packages ]]; then _filedir tmb; else _filedir; fi
      else
        compopt -o default
      fi
      return ;;
    folders)
      if declare -F _filedir >/dev/null; then _filedir -d; else compopt -o dirnames; fi
      return ;;
    words) ;;
    *) return ;;
  esac
  # What bash takes for the word begins behind the last "=" or ":", unless it is quoted.
  [[ $cur == [\"\']* ]] || stem=${cur%"${cur##*[=:]}"}
  COMPREPLY=()
  for word in "${lines[@]:1}"; do
    word=${word%%$'\t'*}
    COMPREPLY+=("${word#"$stem"}")
  done
  compopt -o filenames 2>/dev/null  # quotes blanks
  [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *[/=] ]] && compopt -o nospace
} &&
  complete -F _tambra tambra
