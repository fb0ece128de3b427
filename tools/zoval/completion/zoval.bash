# Completion of zoval for bash: verbs, options of the verb, files.
#   source tools/zoval/completion/zoval.bash

_zoval() {
  local current=${COMP_WORDS[COMP_CWORD]} previous='' verb=${COMP_WORDS[1]:-} words
  [ "$COMP_CWORD" -gt 0 ] && previous=${COMP_WORDS[COMP_CWORD - 1]}
  if [ "$COMP_CWORD" -eq 1 ] || [ "$verb" = help ]; then
    mapfile -t COMPREPLY < <(compgen -W 'show get set edit diff convert graph help version' -- "$current")
    return
  fi
  case $previous in
    --language) mapfile -t COMPREPLY < <(compgen -W 'de en' -- "$current"); return ;;
    --from | --to) mapfile -t COMPREPLY < <(compgen -W 'text archive xml json' -- "$current"); return ;;
    -m | --member | --path | --tolerance) return ;;
  esac
  if [[ $current == -* ]]; then
    # The help knows them: "  -o,--output FILE  ..."
    words=$("${COMP_WORDS[0]}" help "$verb" 2>/dev/null | sed -n 's/^ *\(-[a-zA-Z],\)\{0,1\}\(--[a-z-]*\).*/\2/p')
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}

complete -o filenames -F _zoval zoval ./zoval
