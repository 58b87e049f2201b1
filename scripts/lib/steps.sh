# Runs checks one after the other and says how long each took. Sourced after common.sh.

current_step=''
step_started=0

# step TITLE COMMAND…: ends the script with a non-zero code when the command fails.
step() {
  current_step=$1
  step_started=$SECONDS
  shift
  printf '== %s\n' "$current_step"
  "$@"
  printf '   %s: done in %d s\n' "$current_step" $((SECONDS - step_started))
  current_step=''
}

report_unfinished_step() {
  local code=$?
  [[ -z $current_step ]] ||
    printf '== FAILED: %s, after %d s\n' "$current_step" $((SECONDS - step_started)) >&2
  exit "$code"
}
trap report_unfinished_step EXIT
