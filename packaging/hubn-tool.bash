# Completion of hubn-tool for bash: source this file, or put it under the name "hubn-tool" where bash's completions lie.

_hubn_tool() {
    local common="--port --json --quiet --simulated-unit -h --help"
    # What each command has beside that.
    local -A options=(
        [ports]=""
        [read]="--confirm --partial --force"
        [write]="--backup --verify --incomplete --force"
        [diff]=""
        [check]=""
        [report]="-o --output --force"
        [log]="--force"
        [time]="--set"
        [firmware]="--yes"
        [decode]=""
    )
    # The arguments of each command, in their order: suffixes of files, and words.
    local -A arguments=(
        [read]=".cfg"
        [write]=".cfg"
        [diff]="unit|.cfg unit|.cfg"
        [check]=".cfg"
        [report]="unit|.cfg"
        [log]=".db|.csv|.json"
        [firmware]=".crypt"
    )
    # The values of options.
    local -A values=(
        [--port]="port"
        [--backup]=".cfg"
        [-o]=".html|.pdf"
        [--output]=".html|.pdf"
    )
    local current=${COMP_WORDS[COMP_CWORD]} before=() word
    COMPREPLY=()

    # To bash the "=" of "--port=NAME" is a word of its own.
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [ "$word" = = ] || before+=("$word")
    done
    [ "$current" != = ] || current=

    local command="" count=0 awaited=""
    for word in "${before[@]}"; do
        if [ -n "$awaited" ]; then
            awaited=""
        elif [[ $word == -* ]]; then
            awaited=${values[$word]-}
        elif [ -z "$command" ]; then
            command=$word
        else
            count=$((count + 1))
        fi
    done

    local wanted own="-v --version"
    local -a places=()
    if [ -n "$command" ]; then
        [ -n "${options[$command]+known}" ] || return
        own=${options[$command]}
        read -ra places <<<"${arguments[$command]-}"
        wanted=${places[count]-}
    else
        wanted=${!options[*]}
    fi
    if [ -n "$awaited" ]; then
        wanted=$awaited
    elif [[ $current == -* ]] || [ -z "$wanted" ]; then
        wanted="$common $own"
    fi
    _hubn_tool_offer "${wanted// /|}" "$current"
}

# Offers what of the list begins so: ports, files of a suffix (and the folders on the way to them), words.
_hubn_tool_offer() {
    local -a parts
    local part
    IFS='|' read -ra parts <<<"$1"
    for part in "${parts[@]}"; do
        case $part in
        port)
            # Looking at the names opens no port.
            # shellcheck disable=SC2012  # the names of devices are plain
            mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(
                compgen -W "$(ls -d /dev/tty[USBACM]* 2>/dev/null | sed 's|^/dev/||')" -- "$2"
            )
            ;;
        .*)
            compopt -o filenames 2>/dev/null
            mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(
                compgen -f -X "!*$part" -- "$2"
                [ "$part" != "${parts[-1]}" ] || compgen -d -- "$2"
            )
            ;;
        *)
            mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W "$part" -- "$2")
            ;;
        esac
    done
}

complete -F _hubn_tool hubn-tool
