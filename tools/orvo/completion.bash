# Completes command lines of orvo in bash. Made by: orvo completion bash

_orvo_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_orvo_files() {
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

_orvo() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        _orvo_words "info validate fk ik explain solve check convert vectors new completion --help --version"
        return
    fi
    case ${COMP_WORDS[1]} in
        info)
            case $previous in
                --format) _orvo_words "text json"; return ;;
                --color) _orvo_words "auto always never"; return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help --format --color"
            else
                _orvo_files
            fi
            ;;
        validate)
            case $previous in
                --format) _orvo_words "text json jsonl"; return ;;
                --color) _orvo_words "auto always never"; return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help --strict --format --color"
            else
                _orvo_files
            fi
            ;;
        fk)
            case $previous in
                -p|--program-system) return ;;
                --offset) return ;;
                --element) return ;;
                -o|--output) _orvo_files; return ;;
                --format) _orvo_words "text json jsonl csv"; return ;;
                --color) _orvo_words "auto always never"; return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help -p --program-system --offset --element --all -o --output --format --color"
            else
                _orvo_files
            fi
            ;;
        ik)
            case $previous in
                -p|--program-system) return ;;
                --offset) return ;;
                --start) return ;;
                --format) _orvo_words "text json"; return ;;
                --color) _orvo_words "auto always never"; return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help -p --program-system --offset --start --format --color"
            else
                _orvo_files
            fi
            ;;
        explain)
            case $previous in
                -p|--program-system) return ;;
                --offset) return ;;
                --start) return ;;
                --format) _orvo_words "text json jsonl"; return ;;
                --color) _orvo_words "auto always never"; return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help -p --program-system --offset --start --format --color"
            else
                _orvo_files
            fi
            ;;
        solve)
            case $previous in
                -o|--output) return ;;
                -p|--program-system) return ;;
                --offset) return ;;
                --shift) return ;;
                --start) return ;;
                --policy) _orvo_words "machine greedy optimal"; return ;;
                --from) _orvo_words "csv jsonl apt"; return ;;
                --format) _orvo_words "csv jsonl"; return ;;
                --decimals) return ;;
                --summary) _orvo_words "text json none"; return ;;
                --measure) _orvo_words "travel time"; return ;;
                --weight) return ;;
                --speed) return ;;
                --branch-cost) return ;;
                --unwind-cost) return ;;
                --cone) return ;;
                --singular) _orvo_words "hold interpolate"; return ;;
                --tolerance) return ;;
                --angle-tolerance) return ;;
                --threads) return ;;
                --memory) return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help -o --output -p --program-system --offset --shift --start --policy --from --format --decimals --summary --measure --weight --speed --branch-cost --unwind-cost --cone --singular --free-start --deviation --tolerance --angle-tolerance --inverse-time --no-residuals --threads --memory"
            else
                _orvo_files
            fi
            ;;
        check)
            case $previous in
                --path) _orvo_files; return ;;
                -p|--program-system) return ;;
                --offset) return ;;
                --shift) return ;;
                --start) return ;;
                --from) _orvo_words "csv jsonl apt"; return ;;
                --axes-from) _orvo_words "csv jsonl"; return ;;
                --tolerance) return ;;
                --angle-tolerance) return ;;
                --range-tolerance) return ;;
                --speed) return ;;
                --feed) return ;;
                --singular) return ;;
                --format) _orvo_words "text json jsonl"; return ;;
                --color) _orvo_words "auto always never"; return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help --path -p --program-system --offset --shift --start --from --axes-from --tolerance --angle-tolerance --range-tolerance --speed --feed --singular --format --color"
            else
                _orvo_files
            fi
            ;;
        convert)
            case $previous in
                --from) _orvo_words "xml json"; return ;;
                --to) _orvo_words "xml json glb gltf urdf dot"; return ;;
                --animate) _orvo_files; return ;;
                --seconds) return ;;
                --unit) return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help --from --to --animate --seconds --unit --no-meshes"
            fi
            ;;
        vectors)
            case $previous in
                -o|--output) _orvo_files; return ;;
                --count) return ;;
                --seed) return ;;
                --offset) return ;;
                --tolerance) return ;;
                --format) _orvo_words "text json"; return ;;
                --color) _orvo_words "auto always never"; return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help -o --output --count --seed --offset --tolerance --format --color"
            else
                _orvo_words "write verify"
            fi
            ;;
        new)
            case $previous in
                --x) return ;;
                --y) return ;;
                --z) return ;;
                --a) return ;;
                --b) return ;;
                --c) return ;;
                --pivot) return ;;
                --eccentric) return ;;
                --angle) return ;;
                -o|--output) _orvo_files; return ;;
                --format) _orvo_words "text json"; return ;;
                --color) _orvo_words "auto always never"; return ;;
            esac
            if [[ $current == -* ]]; then
                _orvo_words "-h --help --list --x --y --z --a --b --c --pivot --eccentric --angle -o --output --format --color"
            else
                _orvo_words "mill-3 horizontal-b trunnion-ac trunnion-bc nutating-table-bc head-table-bc head-head-ca nutating-head-cb gantry-ca mill-turn-xzc mill-turn-xyzbc"
            fi
            ;;
        completion)
            if [[ $current == -* ]]; then
                _orvo_words "-h --help"
            fi
            ;;
    esac
}

complete -F _orvo orvo
