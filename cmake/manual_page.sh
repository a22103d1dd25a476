#!/bin/sh
# SPDX-License-Identifier: MIT
# Writes the manual page for the tool, or for one of its commands, from the output of --help:
# manual_page.sh HELP2MAN TOOL VERSION PAGE.gz [COMMAND]
set -eu

help2man=$1 tool=$2 version=$3 page=$4 command=${5-}
name=kelvora${command:+-$command}
summary=$("$tool" ${command:+"$command"} --help | head -n 1)

# Page names have no spaces, as with other tools that have commands.
"$help2man" --no-info --manual=Kelvora --source="kelvora $version" --version-string="$version" \
    --name="${summary%.}" "$tool${command:+ $command}" |
    sed -e "s/^\.TH KELVORA /.TH $(echo "$name" | tr '[:lower:]' '[:upper:]') /" \
        -e "s/^kelvora $command \\\\- /$name \\\\- /" |
    gzip -9n >"$page"
