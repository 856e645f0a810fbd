#!/bin/bash
# make-tokens.sh FOLDER MODULE
#
# Makes an authority for people's certificates, people.pem, and in FOLDER/tokens the smart cards that
# tests use, each with the PIN 1234, in the form that SoftHSM (MODULE) keeps them in. A card is named
# after what it has.
set -euo pipefail

folder=$1 module=$2
rm -rf "$folder"
mkdir -p "$folder/tokens"
cd "$folder"
export SOFTHSM2_CONF=$folder/softhsm2.conf GNUTLS_PIN=1234
printf 'directories.tokendir = %s/tokens\nlog.level = ERROR\n' "$folder" >softhsm2.conf

# At noon, which is the same day nearly everywhere.
long_ago=20200101120000Z
not_so_long_ago=20200201000000Z
far_away=21200101120000Z
serial=1

# key NAME
key() {
    openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out "$1.key" 2>/dev/null
}

# person NAME USAGE [END]
person() {
    key "$1"
    printf '[ca]\ndefault_ca = people\n[people]\ndatabase = index\nnew_certs_dir = .\nserial = serial
default_md = sha256\npolicy = policy\nx509_extensions = person\n[policy]\ncommonName = supplied
[person]\nkeyUsage = digitalSignature\nextendedKeyUsage = %s\n' "$2" >people.conf
    : >index
    printf '%02d\n' $((serial++)) >serial
    openssl req -new -key "$1.key" -subj "/CN=$1" -out "$1.csr"
    openssl ca -batch -notext -config people.conf -cert people.pem -keyfile people.key \
        -in "$1.csr" -out "$1.pem" -startdate "$long_ago" -enddate "${3:-$far_away}" 2>/dev/null
}

# card NAME
card() {
    softhsm2-util --module "$module" --init-token --free --label "$1" --so-pin 1234 --pin 1234 \
        >/dev/null
}

# put_key CARD NAME ID
put_key() {
    softhsm2-util --module "$module" --import "$2.key" --token "$1" --label "$2" --id "$3" \
        --pin 1234 >/dev/null
}

# put_certificate CARD NAME ID
put_certificate() {
    p11tool --provider "$module" --batch --login --write --load-certificate "$2.pem" \
        --label "$2" --id "$3" "pkcs11:token=$1" >/dev/null 2>&1
}

# put CARD NAME ID
put() {
    put_key "$1" "$2" "$3"
    put_certificate "$1" "$2" "$3"
}

key people
openssl req -x509 -new -key people.key -days 36500 -subj "/CN=Test authority of people" \
    -addext 'basicConstraints=critical,CA:TRUE' -addext 'keyUsage=critical,keyCertSign,cRLSign' \
    -out people.pem
person Alice clientAuth
person Bob clientAuth
person Old clientAuth "$not_so_long_ago"
person Machine serverAuth
person Keyless clientAuth

card alice
put alice Alice 01
card bob
put bob Bob 01
put_certificate bob people 02
card useless
put useless Old 01
put useless Machine 02
put_certificate useless Keyless 03
put_certificate useless people 04

# The same certificate a thousand times. Writing each through the module would take a minute.
card thousand
put thousand Alice 01
certificate=$(grep -rlaF 'Test authority of people' tokens | while read -r file; do
    if grep -qaF thousand "$(dirname "$file")/token.object"; then printf '%s\n' "$file"; fi
done)
for number in $(seq 999); do
    cp "$certificate" "$(dirname "$certificate")/00000000-0000-0000-0000-$(printf '%012d' "$number").object"
done
rm -f ./*.csr people.conf index* serial*
# The tests may be run by another user than built them.
chmod -R a+rX .
