"""What debian/ says agrees with the project. Whether packages come of it is tried by scripts/package, which takes long."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["SOURCE"])
DEBIAN = SOURCE / "debian"


def ran(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, cwd=SOURCE).stdout


def read(name):
    return (SOURCE / name).read_text()


def version():
    return re.search(r"project\(KelArc VERSION (\S+)", read("CMakeLists.txt")).group(1)


class Debian(unittest.TestCase):
    def setUp(self):
        # Paragraphs of fields; the first one is the source's.
        self.paragraphs = [dict(re.findall(r"^(\S+): *(.*(?:\n .*)*)", text, re.MULTILINE))
                           for text in read("debian/control").split("\n\n")]
        self.packages = {paragraph["Package"]: paragraph for paragraph in self.paragraphs[1:]}

    def test_the_packages_are_the_four(self):
        self.assertEqual(sorted(self.packages), ["kelarc-sim", "kelarc-tools", "libkelarc-dev", "libkelarc1"])

    def test_their_version_is_the_projects(self):
        self.assertEqual(ran("dpkg-parsechangelog", "--show-field", "Version").strip(), version())
        self.assertEqual(ran("dpkg-parsechangelog", "--show-field", "Source").strip(), self.paragraphs[0]["Source"])

    def test_the_library_is_in_a_package_named_after_its_soname(self):
        soname = re.search(r"SONAME.*\[libKelArc\.so\.(\d+)\]", ran("readelf", "-dW", os.environ["LIBRARY"])).group(1)
        self.assertIn(f"libkelarc{soname}", self.packages)
        self.assertIn(f"DESTDIR=debian/libkelarc{soname} cmake --install $(build) --component runtime",
                      read("debian/rules"))

    def test_the_symbols_file_lists_what_is_exported_and_since_when(self):
        head, *listed = read("debian/libkelarc1.symbols").splitlines()
        self.assertEqual(head, "libKelArc.so.1 libkelarc1 #MINVER#")
        exported = ran("nm", "-D", "--defined-only", "--with-symbol-versions", os.environ["LIBRARY"]).splitlines()
        names = {line.split()[2].replace("@@", "@") for line in exported} - {"KELARC_1"} | {"KELARC_1@KELARC_1"}
        self.assertEqual({line.split()[0] for line in listed}, names)
        self.assertEqual(len(listed), len(names))
        since = {line.split()[1] for line in listed}
        self.assertTrue(all(tuple(map(int, number.split("."))) <= tuple(map(int, version().split(".")))
                            for number in since), since)

    def test_every_component_goes_into_a_package(self):
        lists = [path.read_text() for folder in ("src", "sim", "tools", "packaging")
                 for path in (SOURCE / folder).rglob("CMakeLists.txt")]
        components = set(re.findall(r"\bCOMPONENT (\w+)", "".join(lists)))
        packaged = re.findall(r"DESTDIR=debian/(\S+) cmake --install \$\(build\) --component (\w+)", read("debian/rules"))
        self.assertEqual({component for _, component in packaged}, components)
        self.assertEqual({package for package, _ in packaged}, set(self.packages))

    def test_the_development_package_has_the_guide_and_every_program_that_it_shows(self):
        listed = {pathlib.Path(line).name for line in read("debian/libkelarc-dev.examples").splitlines()}
        for line in read("debian/libkelarc-dev.examples").splitlines() + read("debian/libkelarc-dev.docs").splitlines():
            self.assertTrue((SOURCE / line).exists(), line)
        shown = {name for page in (SOURCE / "docs/guide").glob("*.md")
                 for name in re.findall(r"^@(?:snippet|include) (\S+)", page.read_text(), re.MULTILINE)}
        self.assertEqual(listed, shown)

    def test_every_package_says_how_it_goes_with_those_of_another_machine(self):
        self.assertEqual({name: fields["Multi-Arch"] for name, fields in self.packages.items()},
                         {"libkelarc1": "same", "libkelarc-dev": "same", "kelarc-tools": "foreign",
                          "kelarc-sim": "allowed"})

    def test_a_unit_gets_the_simulated_modem_only_when_asked_for(self):
        for name in ("libkelarc1", "kelarc-tools"):
            fields = self.packages[name]
            self.assertEqual(fields["Suggests"], "kelarc-sim")
            self.assertNotIn("kelarc-sim", fields["Depends"] + fields.get("Recommends", ""))

    def test_without_root_what_is_not_tried_fails_before_anything_is_built(self):
        with tempfile.TemporaryDirectory() as folder:
            script = pathlib.Path(folder, "scripts/package")
            script.parent.mkdir()
            shutil.copy(SOURCE / "scripts/package", script)
            pathlib.Path(folder).chmod(0o755)
            nobody = {"user": 65534} if os.geteuid() == 0 else {}
            done = subprocess.run([script, "quick"], capture_output=True, text=True, cwd="/", **nobody)
            left = sorted(path.name for path in pathlib.Path(folder).iterdir())
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertIn("takes root and the right to mount; 'scripts/package built' does without", done.stderr)
        self.assertEqual(left, ["scripts"])

    def test_the_clean_root_has_what_building_takes(self):
        asked = re.findall(r"[a-z][a-z0-9+-]+", re.sub(r"\(.*?\)", "", self.paragraphs[0]["Build-Depends"]))
        installed = re.search(r"apt-get install -y --no-install-recommends \\\n(.*?)\n    touch", read("scripts/package"),
                              re.DOTALL).group(1).split()
        self.assertEqual({"debhelper" if name == "debhelper-compat" else name for name in asked} - set(installed), set())

    def test_the_copyright_file_has_the_license_whole(self):
        license_text = " ".join(read("LICENSE").partition("Permission is")[2].split())
        copied = " ".join(re.sub(r"^ \.$", "", read("debian/copyright"), flags=re.MULTILINE).split())
        self.assertIn(license_text, copied)


unittest.main()
