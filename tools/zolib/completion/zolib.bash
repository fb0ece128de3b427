# Completion of zolib for bash: verbs, options of the verb, their values, files, and members of the library.
#   source tools/zolib/completion/zolib.bash

_zolib_verbs='create add update sync diff list info cat extract test delete recover rename reorganize salvage help version'

# A word as it is typed, without its quotes; nothing in it is expanded but ~ in front.
_zolib_unquoted() {
  local word=$1
  case $word in
    \'*) word=${word#\'} word=${word%\'} ;;
    \"*) word=$(printf %s "${word#\"}" | sed 's/"$//; s/\\\([\\"$`]\)/\1/g') ;;
    *)
      [[ $word == '~/'* ]] && word=$HOME${word#'~'}
      word=$(printf %s "$word" | sed 's/\\\(.\)/\1/g') ;;
  esac
  printf %s "$word"
}

# A name out of a library is whatever its maker wrote, so it is quoted here, for the quote that is
# open: of names that are no files bash leaves "$" and "`" as they are.
_zolib_members() {
  local quote=${1:0:1} typed word deleted=()
  typed=$(_zolib_unquoted "$1")
  [ "${COMP_WORDS[1]}" = recover ] && deleted=(--deleted)
  compopt +o filenames 2>/dev/null
  while IFS= read -r word; do
    [[ $word == "$typed"* ]] || continue
    case $quote in
      \') word=${word//\'/\'\\\'\'} ;;
      \") word=$(printf %s "$word" | sed 's/[\\"$`]/\\&/g') ;;
      *) printf -v word %q "$word" ;;
    esac
    COMPREPLY+=("$word")
  done < <("${COMP_WORDS[0]}" list "$(_zolib_unquoted "${COMP_WORDS[2]}")" --names "${deleted[@]}" \
    2>/dev/null | tr -d '\r')
}

_zolib() {
  local current=${COMP_WORDS[COMP_CWORD]} previous='' verb=${COMP_WORDS[1]:-} words
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
        _zolib_members "$current"
        return
      fi ;;
  esac
  mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

complete -o filenames -F _zolib zolib ./zolib
