# Completion of moltiva(1) for bash.

_moltiva()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    local command='' at=1 options='' words='' files=''
    # Photographs as the program reads them.
    local photos='!*.@(jpg|jpeg|png|heic|heif|tif|tiff|webp|bmp|gif|JPG|JPEG|PNG|HEIC|HEIF|TIF|TIFF|WEBP|BMP|GIF)'
    COMPREPLY=()
    # Options that every command takes may stand before it. bash takes the colon of an address for a word of its own.
    while [[ $at -lt $COMP_CWORD ]]; do
        case ${COMP_WORDS[at]} in
            --verbose) ((at += 1)) ;;
            --service | --site)
                ((at += 2))
                while [[ ${COMP_WORDS[at]} == : ]]; do ((at += 2)); done
                ;;
            *)
                command=${COMP_WORDS[at]}
                break
                ;;
        esac
    done
    [[ $at -gt $COMP_CWORD ]] && return

    case $command in
        export)
            options='--format --template --texts --out --jobs --dry-run --json --sample'
            files=$photos
            ;;
        generate)
            options='--mode --objective --format --csv --json'
            files=$photos
            ;;
        publish)
            options='--network --placement --caption --caption-file --format --template --texts --dry-run --again --json'
            files=$photos
            ;;
        networks | account | history) options='--json' ;;
        connect) words='instagram facebook linkedin' ;;
        templates)
            options='--json'
            words='list pull push rename remove restore'
            [[ " ${COMP_WORDS[*]} " == *' push '* ]] && words='' files='!*.@(json|JSON)'
            ;;
        local)
            options='--json'
            words='status install uninstall'
            ;;
        login | register) options='--email' ;;
        logout) ;;
        --self-test) options='--json' ;;
        *)
            options='--version --self-test'
            [[ -z $command ]] &&
                words='export generate publish networks connect templates local login register logout account history'
            files=$photos
            ;;
    esac
    options+=' --help'
    [[ $command == --self-test ]] || options+=' --service --site --verbose'

    case $previous in
        --format) words='story-reel horizontal carousel-portrait square' options='' files='' ;;
        --mode) words='local cloud' options='' files='' ;;
        --network) words='instagram facebook linkedin' options='' files='' ;;
        --placement) words='feed story' options='' files='' ;;
        --template) words='' options='' files='!*.@(json|JSON)' ;;
        --texts | --csv) words='' options='' files='!*.@(csv|CSV)' ;;
        --caption-file) words='' options='' files='!*' ;;
        --out)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            compopt -o filenames 2>/dev/null
            return
            ;;
        --jobs | --objective | --caption | --email | --service | --site) return ;;
    esac

    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        return
    fi
    mapfile -t COMPREPLY < <(
        compgen -W "$words" -- "$current"
        if [[ -n $files ]]; then
            shopt -s extglob
            [[ $files == '!*' ]] && files=''
            compgen -f -X "$files" -- "$current"
            compgen -d -- "$current"
        fi
    )
    compopt -o filenames 2>/dev/null
}
complete -F _moltiva moltiva
