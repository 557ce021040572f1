#!/usr/bin/env bash
# Makes the certificates of the TLS tests anew, valid for a hundred years. They protect nothing: the keys are public.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

request() { # name, subject
    openssl ecparam -name prime256v1 -genkey -noout -out "$1.key"
    openssl req -new -key "$1.key" -subj "$2" -out "$1.csr"
}

# name, subject: a root certificate that has signed itself
root() {
    request "$1" "$2"
    openssl x509 -req -in "$1.csr" -key "$1.key" -days 36500 -out "$1.pem" \
        -extfile <(echo 'basicConstraints=critical,CA:true')
}

# name, subject, alternative names, root
leaf() {
    request "$1" "$2"
    openssl x509 -req -in "$1.csr" -CA "$4.pem" -CAkey "$4.key" -CAcreateserial -days 36500 -out "$1.pem" \
        -extfile <(echo "subjectAltName=$3")
}

root root '/O=Calyx tests/CN=Calyx Test Root'
root nameless '/O=A root without a common name'
leaf loopback '/CN=127.0.0.1' 'IP:127.0.0.1,DNS:localhost' root
leaf elsewhere '/CN=elsewhere.example' 'DNS:elsewhere.example' root

rm -f ./*.csr ./*.srl root.key nameless.key
