# Sourced by scripts/demo and scripts/bench: private servers in a temporary folder, on free loopback
# ports, ended by process id when the script ends.

work=$(mktemp -d "${TMPDIR:-/tmp}/dorvane-XXXXXX")
pids=()

end_servers() {
  local pid
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap end_servers EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# A loopback port that nothing listens on. Dorvane's ports are 16-bit signed numbers.
free_port() {
  local port
  while :; do
    port=$((RANDOM % 20000 + 12000))
    (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null || { echo "$port"; return; }
  done
}

# await FILE TEXT PID: until the server has written TEXT to FILE.
await() {
  local tries
  for tries in $(seq 600); do
    grep -q "$2" "$1" 2>/dev/null && return
    kill -0 "$3" 2>/dev/null || break
    sleep 0.1
  done
  echo "A server did not start:" >&2
  cat "$1" >&2
  exit 1
}

# start_sandbox DATABASE...: the practice SQL Server; user sa, password secret.
start_sandbox() {
  local creates=() database
  for database in "$@"; do creates+=(--create "$database"); done
  sql_port=$(free_port)
  "$bin/dorvane-sandbox" --folder "$work/sqlserver" --port "$sql_port" --user sa --password secret \
    "${creates[@]}" >"$work/sandbox.log" 2>&1 &
  pids+=($!)
  await "$work/sandbox.log" "listening on" $!
  # The command-line clients read the server's address and their own code page here.
  cat >"$work/freetds.conf" <<CONF
[sandbox]
host = 127.0.0.1
port = $sql_port
tds version = 7.4
client charset = UTF-8
text size = 64000000
CONF
  export FREETDSCONF="$work/freetds.conf"
}

# start_mariadb OPTION...: user root, password secret.
start_mariadb() {
  local user=()
  [ "$(id -u)" = 0 ] && user=(--user=root)
  mysql_port=$(free_port)
  # Servers that share a folder for temporary files delete each other's when they start.
  mkdir "$work/tmp"
  TMPDIR="$work/tmp" mariadb-install-db --no-defaults --force --skip-test-db --auth-root-authentication-method=normal \
    --datadir="$work/mariadb" "${user[@]}" >"$work/install.log" 2>&1 ||
    { cat "$work/install.log" >&2; exit 1; }
  echo "SET PASSWORD FOR 'root'@'localhost' = PASSWORD('secret');
GRANT ALL ON *.* TO 'root'@'127.0.0.1' IDENTIFIED BY 'secret' WITH GRANT OPTION;" >"$work/init.sql"
  mariadbd --no-defaults "${user[@]}" --datadir="$work/mariadb" --tmpdir="$work/tmp" --socket="$work/s" \
    --pid-file="$work/mariadb.pid" --bind-address=127.0.0.1 --port="$mysql_port" \
    --skip-name-resolve --init-file="$work/init.sql" --max-allowed-packet=64M "$@" \
    >"$work/mariadb.log" 2>&1 &
  pids+=($!)
  await "$work/mariadb.log" "ready for connections" $!
}

sql() { # sql DATABASE <SCRIPT: runs batches on the practice SQL Server
  bsqldb -S sandbox -U sa -P secret -D "$1" -q -t '\t'
}

mysql_run() { # mysql_run DATABASE STATEMENT [CLIENT OPTION...]
  local database=$1 statement=$2
  shift 2
  mariadb --no-defaults --host=127.0.0.1 --port="$mysql_port" --user=root --password=secret \
    --default-character-set=utf8mb4 "$@" --execute="$statement" "$database"
}

# scrambled PASSWORD: as a settings file keeps it (code page bytes).
scrambled() { printf %s "$1" | LC_ALL=C tr 'A-Za-z0-9' '\300-\375'; }

# write_settings FILE DIRECTION SOURCE_DB DEST_DB TABLES UNDERSCORE MODE RELATIONSHIPS LOG
write_settings() {
  local first_port=$sql_port first_user=sa first_auth=False second_port=$mysql_port
  local second_user=root second_auth=''
  if [ "$2" = 2 ]; then
    first_port=$mysql_port first_user=root first_auth='' second_port=$sql_port
    second_user=sa second_auth=False
  fi
  printf '%s\r\n' "$2" 127.0.0.1 "$first_port" "$first_user" "$(scrambled secret)" "$first_auth" \
    "$3" 127.0.0.1 "$second_port" "$second_user" "$(scrambled secret)" "$second_auth" "$4" \
    "$5" "$6" True "$7" "$8" "$9" >"$1"
}
