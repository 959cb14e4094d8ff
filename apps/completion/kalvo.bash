# Completion of kalvo and kalvo-view for bash: what --help tells.

_kalvo() {
    local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} verb= candidate
    for candidate in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $candidate == -* ]] || { verb=$candidate; break; }
    done
    COMPREPLY=()
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("$program" $verb --help 2>/dev/null | grep -o -- '^  [-,a-zA-Z]*--[a-z-]*' | grep -o -- '--.*')" -- "$word")
    elif [[ $previous == --* ]]; then
        # "--type NAME:bw1, bw16": one of a few.
        mapfile -t COMPREPLY < <(compgen -W "$("$program" $verb --help 2>/dev/null | sed -n "s/^  $previous NAME:\(.*\)/\1/p" | tr -d ,)" -- "$word")
    elif [[ -z $verb && ${program##*/} == kalvo ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z0-9]*\).*/\1/p')" -- "$word")
    fi
}
complete -o default -F _kalvo kalvo kalvo-view
