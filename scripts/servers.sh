# shellcheck shell=bash
# Sourced by scripts/demo and scripts/bench: private servers in a temporary folder, on free loopback
# ports, ended by process id when the script ends; for measuring, servers of one's own as well.
# The caller sets bin, the folder of the programs.
: "${bin:?}"

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

# A loopback port that nothing listens on.
free_port() {
  local port
  while :; do
    port=$((RANDOM % 20000 + 12000))
    (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null || { echo "$port"; return; }
  done
}

# await FILE TEXT PID: until the server has written TEXT to FILE.
await() {
  for _ in $(seq 600); do
    grep -q "$2" "$1" 2>/dev/null && return
    kill -0 "$3" 2>/dev/null || break
    sleep 0.1
  done
  echo "A server did not start:" >&2
  cat "$1" >&2
  exit 1
}

# The practice SQL Server and the private MySQL, unless others are used.
sql_host=127.0.0.1 sql_user=sa sql_password=secret
mysql_host=127.0.0.1 mysql_user=root mysql_password=secret

# use_mssql HOST:PORT,USER,PASSWORD
use_mssql() {
  IFS=,: read -r sql_host sql_port sql_user sql_password <<<"$1"
  write_client_configuration
}

# use_mysql HOST:PORT,USER,PASSWORD
use_mysql() { IFS=,: read -r mysql_host mysql_port mysql_user mysql_password <<<"$1"; }

# The command-line clients read the server's address and their own code page here.
write_client_configuration() {
  cat >"$work/freetds.conf" <<CONF
[mssql]
host = $sql_host
port = $sql_port
tds version = 7.4
client charset = UTF-8
text size = 64000000
CONF
  export FREETDSCONF="$work/freetds.conf"
}

# start_sandbox DATABASE...: the practice SQL Server.
start_sandbox() {
  local creates=() database
  for database in "$@"; do creates+=(--create "$database"); done
  sql_port=$(free_port)
  "$bin/dorvane-sandbox" --folder "$work/sqlserver" --port "$sql_port" --user sa --password secret \
    "${creates[@]}" >"$work/sandbox.log" 2>&1 &
  pids+=($!)
  await "$work/sandbox.log" "listening on" $!
  write_client_configuration
}

# start_mariadb OPTION...: Debian's MariaDB.
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

# start_mysql PROGRAM OPTION...: the mysqld of scripts/mysql-server.
start_mysql() {
  local program=$1 user=()
  shift
  [ "$(id -u)" = 0 ] && user=(--user=root)
  mysql_port=$(free_port)
  mkdir "$work/tmp"
  "$program" --no-defaults --initialize-insecure "${user[@]}" --secure-file-priv= --datadir="$work/mysql" \
    >"$work/install.log" 2>&1 || { cat "$work/install.log" >&2; exit 1; }
  echo "ALTER USER 'root'@'localhost' IDENTIFIED BY 'secret';
CREATE USER 'root'@'127.0.0.1' IDENTIFIED BY 'secret';
GRANT ALL ON *.* TO 'root'@'127.0.0.1' WITH GRANT OPTION;" >"$work/init.sql"
  "$program" --no-defaults "${user[@]}" --datadir="$work/mysql" --tmpdir="$work/tmp" --socket="$work/s" \
    --pid-file="$work/mysql.pid" --bind-address=127.0.0.1 --port="$mysql_port" --mysqlx=OFF --secure-file-priv= \
    --skip-name-resolve --init-file="$work/init.sql" --max-allowed-packet=64M "$@" \
    >"$work/mysql.log" 2>&1 &
  pids+=($!)
  await "$work/mysql.log" "ready for connections" $!
}

sql() { # sql DATABASE <SCRIPT: runs batches on the SQL Server
  bsqldb -S mssql -U "$sql_user" -P "$sql_password" -D "$1" -q -t '\t'
}

mysql_run() { # mysql_run DATABASE STATEMENT [CLIENT OPTION...]
  local database=$1 statement=$2
  shift 2
  mariadb --no-defaults --host="$mysql_host" --port="$mysql_port" --user="$mysql_user" --password="$mysql_password" \
    --default-character-set=utf8mb4 "$@" --execute="$statement" "$database"
}

# scrambled PASSWORD: as a settings file keeps it (code page bytes).
scrambled() { printf %s "$1" | LC_ALL=C tr 'A-Za-z0-9' '\300-\375'; }

# write_settings FILE DIRECTION SOURCE_DB DEST_DB TABLES UNDERSCORE MODE RELATIONSHIPS LOG
write_settings() {
  local source=("$sql_host" "$sql_port" "$sql_user" "$(scrambled "$sql_password")" False)
  local dest=("$mysql_host" "$mysql_port" "$mysql_user" "$(scrambled "$mysql_password")" '')
  local kept=("${source[@]}")
  [ "$2" = 2 ] && source=("${dest[@]}") dest=("${kept[@]}")
  printf '%s\r\n' "$2" "${source[@]}" "$3" "${dest[@]}" "$4" "$5" "$6" True "$7" "$8" "$9" >"$1"
}
