#!/bin/sh
# make-certificates.sh FOLDER
#
# Makes a private certificate authority and one server certificate for each way in which a
# browser may like or dislike it, each as NAME.pem with NAME.key.
set -eu

folder=$1
mkdir -p "$folder"
cd "$folder"

right_host='IP:127.0.0.1,DNS:localhost'
wrong_host='DNS:elsewhere.example'

# key NAME
key() {
    openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out "$1.key" 2>/dev/null
    # They guard nothing, and the tests may be run by another user than built them.
    chmod a+r "$1.key"
}

# authority NAME
authority() {
    key "$1"
    openssl req -x509 -new -key "$1.key" -days 3650 -subj "/CN=Test authority $1" \
        -addext 'basicConstraints=critical,CA:TRUE' \
        -addext 'keyUsage=critical,keyCertSign,cRLSign' -out "$1.pem"
    mkdir -p "$1.db"
    : > "$1.db/index"
    rm -f "$1.db"/*.pem
}

# server NAME AUTHORITY HOSTS START END; times as YYYYMMDDHHMMSSZ
server() {
    key "$1"
    cat > "$1.conf" <<CONF
[req]
distinguished_name = name
prompt = no
[name]
CN = $1
[ca]
default_ca = authority
[authority]
database = $2.db/index
new_certs_dir = $2.db
certificate = $2.pem
private_key = $2.key
rand_serial = yes
default_md = sha256
unique_subject = no
policy = policy
x509_extensions = server
[policy]
commonName = supplied
[server]
basicConstraints = critical,CA:FALSE
keyUsage = critical,digitalSignature
extendedKeyUsage = serverAuth
subjectAltName = $3
CONF
    openssl req -new -config "$1.conf" -key "$1.key" -out "$1.csr"
    openssl ca -batch -notext -config "$1.conf" -in "$1.csr" -out "$1.pem" \
        -startdate "$4" -enddate "$5" 2>/dev/null
    rm "$1.csr" "$1.conf"
}

long_ago=20200101000000Z
not_so_long_ago=20200201000000Z
far_away=21200101000000Z
farther_away=21200201000000Z

authority trusted
authority unknown
server good trusted "$right_host" $long_ago $far_away
server expired trusted "$right_host" $long_ago $not_so_long_ago
server wrong-host trusted "$wrong_host" $long_ago $far_away
server expired-wrong-host trusted "$wrong_host" $long_ago $not_so_long_ago
server not-yet-valid trusted "$right_host" $far_away $farther_away
server unknown-issuer unknown "$right_host" $long_ago $far_away
