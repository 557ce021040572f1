#!/usr/bin/env bash
# Makes the certificates of the TLS tests anew. They protect nothing: the keys are public. Valid from the past on,
# whatever the clock of the machine that tests.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cat >"$folder/ca.cnf" <<END
[ca]
default_ca = main
[main]
database = $folder/index
new_certs_dir = $folder
rand_serial = yes
default_md = sha256
policy = any
unique_subject = no
email_in_dn = no
[any]
organizationName = optional
commonName = optional
END

# name, subject, extension, end of validity, options that name the signer
certificate() {
    : >"$folder/index"
    [ -e "$1.pem.key" ] || openssl ecparam -name prime256v1 -genkey -noout -out "$1.pem.key"
    openssl req -new -key "$1.pem.key" -subj "$2" -out "$folder/$1.csr"
    openssl ca -batch -notext -config "$folder/ca.cnf" -in "$folder/$1.csr" -out "$1.pem" -startdate 20000101000000Z \
        -enddate "$4" -extfile <(echo "$3") "${@:5}"
}

root() { # name, subject
    certificate "$1" "$2" 'basicConstraints=critical,CA:true' 21000101000000Z -selfsign -keyfile "$1.pem.key"
}

leaf() { # name, subject, alternative names, root, end of validity
    certificate "$1" "$2" "subjectAltName=$3" "$5" -cert "$4.pem" -keyfile "$4.pem.key"
}

rm -f ./*.key
for name in root nameless stranger; do openssl ecparam -name prime256v1 -genkey -noout -out "$name.pem.key"; done
root root '/O=Calyx tests/CN=Calyx Test Root'
root nameless '/O=A root without a common name'
root stranger '/O=Calyx tests/CN=A root that nobody trusts'
leaf loopback '/CN=127.0.0.1' 'IP:127.0.0.1,DNS:localhost' root 21000101000000Z
leaf elsewhere '/CN=elsewhere.example' 'DNS:elsewhere.example' root 21000101000000Z
leaf expired '/CN=127.0.0.1' 'IP:127.0.0.1,DNS:localhost' root 20010101000000Z
leaf unknown '/CN=127.0.0.1' 'IP:127.0.0.1,DNS:localhost' stranger 21000101000000Z
rm -f root.pem.key nameless.pem.key stranger.pem.key
