#!/bin/bash
# Brings the catalogues' sources up to date with the table of messages.
#
#   scripts/update-catalogs.sh           writes a new template, and merges it into each catalogue
#   scripts/update-catalogs.sh --check   writes nothing; fails if the template is out of date or a
#                                        translation is missing
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$root"

messages=vpn/Common/i18n/BuiltInMessages.cpp
template=l10n/Tunnelkeep.pot

# make_template: prints the template. It contains no time, so that it changes only with the
# messages.
make_template() {
    cat <<'HEADER'
# Texts that the suite's graphical components share.
# The charset is spelled in small letters: the catalogue check accepts no other spelling.
msgid ""
msgstr ""
"Project-Id-Version: Tunnelkeep\n"
"MIME-Version: 1.0\n"
"Content-Type: text/plain; charset=utf-8\n"
"Content-Transfer-Encoding: 8bit\n"

HEADER
    xgettext --language=C++ --from-code=UTF-8 --extract-all --add-comments=Translators \
        --omit-header --no-location --output=- "$messages"
}

case "${1:-}" in
    "")
        make_template >"$template"
        for catalog in l10n/*.po; do
            msgmerge --quiet --no-fuzzy-matching --update --backup=none "$catalog" "$template"
            # msgmerge spells the charset in capitals, as most programs for translators do.
            sed -i 's/charset=UTF-8/charset=utf-8/' "$catalog"
        done
        ;;
    --check)
        make_template | diff -u "$template" - || fail "$template is out of date"
        for catalog in l10n/*.po; do
            grep -q 'charset=utf-8\\n' "$catalog" || fail "charset of $catalog"
            msgcmp "$catalog" "$template" || fail "$catalog is not complete"
        done
        ;;
    *) fail "unknown argument: $1" ;;
esac
