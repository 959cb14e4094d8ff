#!/usr/bin/env bash
# Makes the manual pages of the programs from what they say of themselves: man_pages.sh KALVO KALVO_VIEW FOLDER
set -euo pipefail

kalvo=$1 viewer=$2 folder=$3
rm -rf "$folder"
mkdir -p "$folder"

# A page of what `PROGRAM [VERB] --help` prints, which begins with what it is for.
page() {
    local name=$1 program=$2 verb=${3:-}
    help2man --no-info --name="$("$program" $verb --help | head -n 1)" --help-option="$verb --help" \
             --version-string="$("$program" --version | cut -d ' ' -f 2)" "$program" |
        sed "s/^\.TH [A-Z-]*/.TH ${name^^}/; /^\.SH EXAMPLES/{n;s/.*/.nf/}" |
        gzip -9n >"$folder/$name.1.gz"
}

page kalvo "$kalvo"
page kalvo-view "$viewer"
for verb in $("$kalvo" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z0-9]*\).*/\1/p'); do
    page "kalvo-$verb" "$kalvo" "$verb"
done
