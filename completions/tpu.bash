# Completion of tpu's arguments for bash.
_tpu() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    case $previous in
    --test)
        mapfile -t COMPREPLY < <(compgen -f -X '!*.tpu' -- "$current"; compgen -d -- "$current")
        compopt -o filenames
        return
        ;;
    esac
    case $current in
    --command=* | --section=*)
        mapfile -t COMPREPLY < <(compgen -f -- "${current#*=}")
        compopt -o filenames
        ;;
    -*)
        mapfile -t COMPREPLY < <(compgen -W '--command= --section= --nosection --test --version --help' \
            -- "$current")
        [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
        ;;
    *)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        compopt -o filenames
        ;;
    esac
}
complete -F _tpu tpu
