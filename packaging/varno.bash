# Completion of varno's command line for bash.
_varno()
{
    COMPREPLY=()
    [ "$COMP_CWORD" -ne 1 ] ||
        mapfile -t COMPREPLY < <(compgen -W "--help --version" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _varno varno
