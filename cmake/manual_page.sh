#!/bin/sh
# SPDX-License-Identifier: MIT
# Writes the manual page of the tool, or of one of its commands, from what --help says:
# manual_page.sh HELP2MAN TOOL VERSION PAGE.gz [COMMAND]
set -eu

help2man=$1 tool=$2 version=$3 page=$4 command=${5-}
name=kelvora${command:+-$command}
summary=$("$tool" ${command:+"$command"} --help | head -n 1)

# The name of a page has no spaces, as in the manuals of other tools with commands.
"$help2man" --no-info --manual=Kelvora --source="kelvora $version" --version-string="$version" \
    --name="${summary%.}" "$tool${command:+ $command}" |
    sed -e "s/^\.TH KELVORA /.TH $(echo "$name" | tr '[:lower:]' '[:upper:]') /" \
        -e "s/^kelvora $command \\\\- /$name \\\\- /" |
    gzip -9n >"$page"
