SUMMARY = "Asynchronous control of a modem's GNSS receiver"
DESCRIPTION = "A library that lets a navigation application control the GNSS receiver in a modem, kelarcctl for the \
shell, and a simulated modem for machines that have none. The modem is reached through libArcRilD.so, which belongs to \
the unit."
SECTION = "libs"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=265e145cee593d02b389cf201d4e5817"

# The tree that this recipe is part of. A layer that fetches it elsewhere sets EXTERNALSRC = "" and SRC_URI in a .bbappend.
inherit externalsrc
EXTERNALSRC = "${@os.path.normpath(d.getVar('THISDIR') + '/../../..')}"
SRC_URI = "file://run-ptest"

DEPENDS = "asio cli11 ncurses nlohmann-json pugixml"

inherit cmake pkgconfig ptest python3native

# The simulated modem is linked in place of the unit's client library: nothing of it but the name gets into the library.
EXTRA_OECMAKE = "-DKELARC_BUILD_EXAMPLES=OFF -DKELARC_BUILD_TESTS=OFF -DCMAKE_SKIP_INSTALL_RPATH=ON"
EXTRA_OECMAKE:append = "${@' -DKELARC_BUILD_TESTS=ON' if d.getVar('PTEST_ENABLED') == '1' else ''}"
DEPENDS:append = "${@' googletest' if d.getVar('PTEST_ENABLED') == '1' else ''}"

do_install_ptest() {
    install -m 0755 ${B}/tests/unit_tests ${B}/tests/facade_tests ${B}/tests/contract_tests ${D}${PTEST_PATH}/
    chrpath -d ${D}${PTEST_PATH}/*_tests
}

PACKAGE_BEFORE_PN = "${PN}-tools ${PN}-sim"

FILES:${PN} = "${libdir}/libKelArc.so.*"
FILES:${PN}-dev = " \
    ${includedir}/kelarc/* \
    ${libdir}/cmake/KelArc/KelArcConfig.cmake \
    ${libdir}/cmake/KelArc/KelArcConfigVersion.cmake \
    ${libdir}/libKelArc.so \
    ${libdir}/pkgconfig/kelarc.pc \
"
FILES:${PN}-tools = " \
    ${bindir}/kelarcctl \
    ${datadir}/bash-completion/completions/kelarcctl \
    ${datadir}/kelarc-tools/kelarcctl.schema.json \
"
FILES:${PN}-doc = "${mandir}/man1/*"
FILES:${PN}-sim = " \
    ${bindir}/arcsim \
    ${libdir}/kelarc-sim/libArcRecord.so \
    ${libdir}/kelarc-sim/libArcRilD.so \
    ${datadir}/bash-completion/completions/arcsim \
    ${datadir}/kelarc-sim/scenarios/demo.json \
    ${datadir}/kelarc-sim/scenarios/scenario.schema.json \
"

# A unit's image has a client library of its own: nobody is to get the simulated one for needing the name.
PRIVATE_LIBS:${PN}-sim = "libArcRilD.so"
INSANE_SKIP:${PN} = "file-rdeps"
INSANE_SKIP:${PN}-ptest = "file-rdeps"

# What has no version in its name is for loading here, not for development.
INSANE_SKIP:${PN}-sim = "dev-so"
RDEPENDS:${PN}-ptest = "${PN} ${PN}-sim"
