#!/usr/bin/env bash
# Makes the certificates of the TLS tests anew, and the one key of the servers that show them. They protect nothing: the
# key is public. Valid from the past on, whatever the clock of the machine that tests.
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

# name, its key, subject, extension, end of validity, options that name the signer
certificate() {
    : >"$folder/index"
    [ -e "$2" ] || openssl ecparam -name prime256v1 -genkey -noout -out "$2"
    openssl req -new -key "$2" -subj "$3" -out "$folder/request"
    openssl ca -batch -notext -config "$folder/ca.cnf" -in "$folder/request" -out "$1.pem" -startdate 20000101000000Z \
        -enddate "$5" -extfile <(echo "$4") "${@:6}"
}

root() { # name, subject
    certificate "$1" "$folder/$1" "$2" 'basicConstraints=critical,CA:true' 21000101000000Z -selfsign -keyfile "$folder/$1"
}

leaf() { # name, subject, alternative names, root, end of validity
    certificate "$1" key "$2" "subjectAltName=$3" "$5" -cert "$4.pem" -keyfile "$folder/$4"
}

rm -f key
root root '/O=Calyx tests/CN=Calyx Test Root'
root nameless '/O=A root without a common name'
root stranger '/O=Calyx tests/CN=A root that nobody trusts'
leaf loopback '/CN=127.0.0.1' 'IP:127.0.0.1,DNS:localhost' root 21000101000000Z
leaf elsewhere '/CN=elsewhere.example' 'DNS:elsewhere.example' root 21000101000000Z
leaf expired '/CN=127.0.0.1' 'IP:127.0.0.1,DNS:localhost' root 20010101000000Z
leaf unknown '/CN=127.0.0.1' 'IP:127.0.0.1,DNS:localhost' stranger 21000101000000Z
rm stranger.pem
