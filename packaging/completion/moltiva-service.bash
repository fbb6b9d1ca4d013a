# Completion of moltiva-service(1) for bash.

_moltiva_service()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    COMPREPLY=()
    case $previous in
        --data)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            compopt -o filenames 2>/dev/null
            ;;
        --port | --administrator | --name-administrator) ;;
        --host) mapfile -t COMPREPLY < <(compgen -W '127.0.0.1 0.0.0.0' -- "$current") ;;
        *)
            mapfile -t COMPREPLY < <(compgen -W '--data --port --host --until-unused --administrator
                --name-administrator --help --version' -- "$current")
            ;;
    esac
}
complete -F _moltiva_service moltiva-service
