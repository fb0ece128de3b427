# Completion of zomsg for bash: verbs, options of the verb, message files and folders.
#   source tools/zomsg/completion/zomsg.bash

_zomsg() {
  local current=${COMP_WORDS[COMP_CWORD]} previous='' verb=${COMP_WORDS[1]:-} words
  [ "$COMP_CWORD" -gt 0 ] && previous=${COMP_WORDS[COMP_CWORD - 1]}
  if [ "$COMP_CWORD" -eq 1 ] || [ "$verb" = help ]; then
    mapfile -t COMPREPLY < <(compgen -W 'check show extract help version' -- "$current")
    return
  fi
  case $previous in
    --language) return ;;
    -o | --output) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
  esac
  if [[ $current == -* ]]; then
    # The help knows them: "  -o,--output FILE  ..."
    words=$("${COMP_WORDS[0]}" help "$verb" 2>/dev/null | sed -n 's/^ *\(-[a-zA-Z],\)\{0,1\}\(--[a-z-]*\).*/\2/p')
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  elif [ "$verb" = check ]; then
    mapfile -t COMPREPLY < <(compgen -d -- "$current")
  elif [ "$COMP_CWORD" -eq 2 ]; then
    mapfile -t COMPREPLY < <(compgen -f -X '!*.msg' -- "$current"; compgen -d -- "$current")
  fi
}

complete -o filenames -F _zomsg zomsg ./zomsg
