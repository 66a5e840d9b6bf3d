#!/usr/bin/env bash
# A real Prometheus scrapes `loadwarden serve` and the desktop program with
# its setting on, and answers queries about a busy app and the causes of
# slowness; promtool finds nothing to say about the text format, and
# Prometheus parses the newer one it asks for. Skipped (77) without
# Prometheus. Usage: prometheus_scrape_test.sh LOADWARDEN DESKTOP_PROGRAM
set -uo pipefail
program=$1
desktop=$2
for tool in prometheus promtool curl jq python3; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: no $tool"
        exit 77
    fi
done
source "$(dirname "$0")/private_home.sh"
fail() {
    echo "FAILED: $*"
    exit 1
}

printf '#!/bin/sh\nwhile :; do :; done\n' >"$scratch/loadwarden-busy"
chmod +x "$scratch/loadwarden-busy"
"$scratch/loadwarden-busy" &
pids+=($!)

"$program" serve --listen 127.0.0.1:0 --apps 20 >"$scratch/serve.out" 2>"$scratch/serve.err" &
serve=$!
pids+=($serve)
for _ in $(seq 100); do
    grep -q metrics "$scratch/serve.out" && break
    sleep 0.1
done
url=$(grep -o 'http://[^ ]*/metrics' "$scratch/serve.out") || fail "serve did not start: $(cat "$scratch/serve.err")"
address=${url#http://}
address=${address%/metrics}

# A second copy on the same port says why in one line and exits 2.
"$program" serve --listen "$address" >/dev/null 2>"$scratch/second.err"
status=$?
[ $status -eq 2 ] || fail "a port in use ended with $status"
[ "$(wc -l <"$scratch/second.err")" -eq 1 ] || fail "a port in use said: $(cat "$scratch/second.err")"
grep -q "in use" "$scratch/second.err" || fail "a port in use said: $(cat "$scratch/second.err")"

free_port() {
    python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

# The desktop program with "Share figures with Prometheus" turned on.
window_port=$(free_port)
mkdir -p "$XDG_CONFIG_HOME/Loadwarden" && mkdir -m 700 "$scratch/runtime"
printf '[General]\nsharePrometheus=true\nprometheusPort=%s\n' "$window_port" \
    >"$XDG_CONFIG_HOME/Loadwarden/Loadwarden.conf"
XDG_RUNTIME_DIR=$scratch/runtime QT_QPA_PLATFORM=offscreen "$desktop" >"$scratch/desktop.log" 2>&1 &
pids+=($!)

prometheus_port=$(free_port)
cat >"$scratch/prometheus.yml" <<YAML
global:
  scrape_interval: 1s
  scrape_timeout: 1s
scrape_configs:
  - job_name: loadwarden
    static_configs:
      - targets: ['$address', '127.0.0.1:$window_port']
YAML
prometheus --config.file="$scratch/prometheus.yml" --storage.tsdb.path="$scratch/tsdb" \
    --web.listen-address="127.0.0.1:$prometheus_port" >"$scratch/prometheus.log" 2>&1 &
pids+=($!)
api=http://127.0.0.1:$prometheus_port/api/v1

# query EXPR: the first result's value, empty when there is none.
query() {
    curl -s --get "$api/query" --data-urlencode "query=$1" | jq -r '.data.result[0].value[1] // empty'
}
# until SECONDS COMMAND...: runs COMMAND every half second until it succeeds.
until_true() {
    local tries=$(($1 * 2))
    shift
    for _ in $(seq "$tries"); do
        "$@" && return 0
        sleep 0.5
    done
    return 1
}
busy_seconds() {
    query "loadwarden_app_cpu_seconds_total{name=\"loadwarden-busy\",instance=\"$address\"}"
}
window_sees_busy() {
    [ -n "$(query "loadwarden_app_cpu_seconds_total{name=\"loadwarden-busy\",instance=\"127.0.0.1:$window_port\"}")" ]
}
is_up() { [ "$(query 'sum(up)')" = 2 ]; }
has_busy() { [ -n "$(busy_seconds)" ]; }
until_true 30 is_up || fail "Prometheus never found both targets up: $(tail -5 "$scratch/prometheus.log") $(tail -5 "$scratch/desktop.log")"
until_true 40 has_busy || fail "no processor time for the busy app"
first=$(busy_seconds)
rose() { awk -v now="$(busy_seconds)" -v first="$first" 'BEGIN { exit !(now > first) }'; }
until_true 40 rose || fail "the busy app's processor seconds stayed at $first"

until_true 20 window_sees_busy || fail "the window's figures lack the busy app"

# Prometheus asked for the newer format and parsed it without a word.
health=$(curl -s "$api/targets" | jq -r '.data.activeTargets[] | .health + " " + .lastError' | sort -u)
[ "$health" = "up " ] || fail "the targets' health: $health"
cause=$(curl -s --get "$api/query" --data-urlencode 'query=loadwarden_cause_severity{cause="appCPU"}' |
    jq -r '.data.result[].metric.app')
grep -q '^pid:' <<<"$cause" || fail "no processor cause for the busy app: '$cause'"

curl -s "$url" >"$scratch/metrics.txt"
lint=$(promtool check metrics <"$scratch/metrics.txt" 2>&1) || fail "promtool: $lint"
[ -z "$lint" ] || fail "promtool: $lint"
curl -s -D "$scratch/headers" -H 'Accept: application/openmetrics-text; version=1.0.0' "$url" \
    >"$scratch/metrics.om"
grep -qi '^content-type: application/openmetrics-text; version=1.0.0' "$scratch/headers" ||
    fail "no OpenMetrics answer: $(cat "$scratch/headers")"
[ "$(tail -1 "$scratch/metrics.om")" = "# EOF" ] || fail "OpenMetrics without its end"

# Every scrape is one whole tick: the apps' processes add up to the machine's.
for _ in $(seq 20); do
    curl -s "$url" | awk '
        /^loadwarden_processes / { total = $2 }
        /^loadwarden_app_processes\{/ { sum += $NF }
        END { exit !(total > 0 && sum == total) }' || fail "a scrape whose apps do not add up"
done

kill -TERM "$serve"
wait "$serve"
status=$?
[ $status -eq 0 ] || fail "serve ended with $status on SIGTERM"
echo "Prometheus scraped $url and the window: busy app from $first s up, targets healthy, promtool silent"
