# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# Sourced by test.sh and .ci/run after scripts/setup.sh: installs what the tests of report pages in a browser need. What
# cannot be had is told, and these tests are skipped.

debian_font_packages=(fonts-dejavu-core fonts-noto-cjk fonts-noto-color-emoji)
debian_browsers=(chromium-headless-shell chromium)
browser_modules=build/browser # one for all presets
oldest_node=18

browser_tests_are_skipped() {
    echo "note: the tests of report pages in a browser are skipped: $1" >&2
}

# The first of the packages that holds a browser. Ubuntu's are empty and fetch a snap, which sees no files of the tests.
browser_package() {
    local package version
    for package in "${debian_browsers[@]}"; do
        version=$(LC_ALL=C apt-cache policy "$package" 2>/dev/null | sed -n 's/^ *Candidate: //p')
        case $version in
        '' | '(none)' | *snap*) ;;
        *)
            echo "$package"
            return
            ;;
        esac
    done
    return 1
}

has_node() {
    local version
    version=$(node --version 2>/dev/null | sed 's/^v\([0-9]*\).*/\1/')
    [ "${version:-0}" -ge "$oldest_node" ] && command -v npm >/dev/null
}

# Debian's nodejs and npm conflict with a node from elsewhere: one that will do is used.
install_node() {
    has_node || { install_debian_packages nodejs npm && has_node; }
}

install_browser_modules() {
    local wanted=tests/host/report/browser/package.json
    if cmp -s "$wanted" "$browser_modules/package.json"; then
        return # written last
    fi
    echo "Installing puppeteer-core and axe-core into $browser_modules ..." >&2
    rm -rf "$browser_modules"
    mkdir -p "$browser_modules.new"
    cp "$wanted" "$browser_modules.new/"
    quietly env PUPPETEER_SKIP_DOWNLOAD=1 npm --prefix "$browser_modules.new" install --no-audit --no-fund &&
        mv "$browser_modules.new" "$browser_modules"
}

# Fails where the tests are skipped.
set_up_browser_packages() {
    local package
    if ! command -v apt-get >/dev/null; then
        browser_tests_are_skipped "this script installs a browser on Debian only"
    elif ! install_debian_packages "${debian_font_packages[@]}"; then
        browser_tests_are_skipped "the fonts cannot be installed"
    elif ! package=$(browser_package); then
        browser_tests_are_skipped "none of the packages ${debian_browsers[*]} holds a browser here"
    elif ! install_debian_packages "$package"; then
        browser_tests_are_skipped "$package cannot be installed"
    elif ! install_node; then
        browser_tests_are_skipped "node $oldest_node or later with npm cannot be installed"
    else
        return 0
    fi
    return 1
}

set_up_browser_modules() {
    install_browser_modules || browser_tests_are_skipped "puppeteer-core and axe-core cannot be installed with npm"
}
