# Completion of orvml for bash.
_orvml() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=
  local -A options=(
    [info]="--fast --json --help"
    [check]="--quality --strict --coincidence --places --json --sarif --help"
    [diff]="--absolute --relative --absolute-of --relative-of --match --quiet --json --help"
    [patch]="--help"
    [apply]="--help"
    [text]="--input --output --help"
    [extract]="--format --range --help"
    [edit]="--input --output --param --vector --attribute --transmit --remove --help"
    [new]="--from --format --module --module-format --creator --param --vector --attribute --transmit --help"
    [link-vtk]="--input --output --only --older-prisms --strict --remove --json --help"
    [upgrade]="--help"
    [rescue]="--keep-unsound-cells --help"
    [convert]="--from --to --input --output --only --split --text --compress --older-prisms --sets --dimension
      --kind --strict --json --help"
    [report]="--input --output --both --title --no-check --help"
  )
  [ "$COMP_CWORD" -lt 2 ] || command=${COMP_WORDS[1]}
  COMPREPLY=()
  if [ -z "$command" ]; then
    mapfile -t COMPREPLY < <(compgen -W "${!options[*]} --help --version" -- "$current")
  elif [[ $previous == --format && $command == extract ]]; then
    mapfile -t COMPREPLY < <(compgen -W "text csv json npy" -- "$current")
  elif [[ $command == convert && ($previous == --from || $previous == --to) ]]; then
    mapfile -t COMPREPLY < <(compgen -W "exchange vtu msh inp nastran stl ply obj off" -- "$current")
  elif [[ $previous == --format ]]; then
    mapfile -t COMPREPLY < <(compgen -W "json stl obj off ply" -- "$current")
  elif [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${options[$command]:-}" -- "$current")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _orvml orvml
