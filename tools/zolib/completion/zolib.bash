# Completion of zolib for bash: verbs, options of the verb, their values, files, and members of the library.
#   source tools/zolib/completion/zolib.bash

_zolib_verbs='create add update sync diff list info cat extract test delete recover rename reorganize salvage help version'

_zolib() {
  local current=${COMP_WORDS[COMP_CWORD]} previous='' verb=${COMP_WORDS[1]:-} word words
  [ "$COMP_CWORD" -gt 0 ] && previous=${COMP_WORDS[COMP_CWORD - 1]}
  if [ "$COMP_CWORD" -eq 1 ] || [ "$verb" = help ]; then
    mapfile -t COMPREPLY < <(compgen -W "$_zolib_verbs" -- "$current")
    return
  fi
  case $previous in
    --mode) mapfile -t COMPREPLY < <(compgen -W 'fast normal best store auto' -- "$current"); return ;;
    --sort) mapfile -t COMPREPLY < <(compgen -W 'file name size packed time' -- "$current"); return ;;
    --language) mapfile -t COMPREPLY < <(compgen -W 'de en' -- "$current"); return ;;
    --overwrite) mapfile -t COMPREPLY < <(compgen -W 'never always newer' -- "$current"); return ;;
    -o | --output) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --files-from | --dot) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
  esac
  if [[ $current == -* ]]; then
    # The help knows them: "  -o,--output TEXT  ..."
    words=$("${COMP_WORDS[0]}" help "$verb" 2>/dev/null | sed -n 's/^ *\(-[a-zA-Z],\)\{0,1\}\(--[a-z-]*\).*/\2/p')
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    return
  fi
  case $verb in
    list | l | cat | extract | x | test | t | delete | d | recover | rename | rn | info)
      if [ "$COMP_CWORD" -gt 2 ]; then
        while IFS= read -r word; do
          [[ $word == "$current"* ]] && COMPREPLY+=("$word")  # quoted by "-o filenames"
        done < <("${COMP_WORDS[0]}" list "${COMP_WORDS[2]}" --names \
          $([ "$verb" = recover ] && printf %s --deleted) 2>/dev/null | tr -d '\r')
        return
      fi ;;
  esac
  mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

complete -o filenames -F _zolib zolib ./zolib
