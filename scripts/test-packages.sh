# Sourced by test and .ci/run, after setup.sh: the Debian packages that the tests need besides.
# shellcheck shell=bash disable=SC2154

# The codec's and TLS's other implementations, and the servers that the transports are tried against.
packages+=(xz-utils openssl haproxy nginx-light tinyproxy golang-go golang-github-igm-sockjs-go-dev)
# The browser in which the pages are tried, and what it writes with.
packages+=(chromium fonts-open-sans fonts-urw-base35 fonts-dejavu-core)
# What the desk and the terminal's picture write learners' names and answers with; the desk's is made with fonts-open-sans.
packages+=(fonts-droid-fallback)
# What hosts in QML import.
case $qt in
5)
    packages+=(qml-module-qttest qml-module-qtqml qml-module-qtqml-models2)
    packages+=(qml-module-qtquick-controls2 qml-module-qtquick-layouts qml-module-qtquick-window2)
    ;;
6)
    packages+=(qml6-module-qttest qml6-module-qtqml)
    packages+=(qml6-module-qtquick-controls qml6-module-qtquick-layouts qml6-module-qtquick-templates)
    packages+=(qml6-module-qtquick-window)
    ;;
esac
# The address to join at, as a picture at the host's prompt.
packages+=(qrencode)
# A host's makefile.
packages+=(make)
# The API reference, and its Qt help collection.
packages+=(doxygen qttools5-dev-tools)
