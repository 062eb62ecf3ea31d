"""arcsim check accepts what the simulator accepts and tells where a file is wrong."""

import os

import run


class Check(run.ArcsimTest):
    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="ascii") as file:
            file.write(text)
        return path

    def test_says_of_each_file_that_it_is_accepted(self):
        first, second = self.write("a.json", "{}"), self.write("b.json", '{"seed": 7}')
        self.assert_run(self.run_arcsim("check", first, second, first),
                        out=f"{first}: accepted\n{second}: accepted\n{first}: accepted\n")

    def test_accepts_what_is_shipped(self):
        demo = os.path.join(os.environ["SCENARIOS"], "demo.json")
        self.assert_run(self.run_arcsim("check", demo), out=f"{demo}: accepted\n")

    def test_names_file_line_key_value_and_what_is_accepted(self):
        path = self.write("bad.json", '{\n"faults": [\n{ "function": "ARC_Open", "call": 0, "code": 1 } ] }')
        self.assert_run(self.run_arcsim("check", path), 3,
                        err=f"arcsim: {path}:3: faults[0].call: 0 is not accepted; accepted: a whole number from 1 to "
                            "2147483647\n")

    def test_looks_at_all_files_even_when_one_is_bad(self):
        bad, good = self.write("bad.json", "{"), self.write("good.json", "{}")
        ran = self.run_arcsim("check", bad, "nowhere.json", good)
        self.assertEqual((ran.returncode, ran.stdout), (3, f"{good}: accepted\n"))
        first, second = ran.stderr.splitlines()
        self.assertRegex(first, f"^arcsim: {bad}:1: ")
        self.assertEqual(second, "arcsim: nowhere.json: cannot be read: No such file or directory; accepted: the name "
                                 "of a scenario file")

    def test_also_reads_the_files_that_a_scenario_names(self):
        for content, message in (('{"route": {"gpx": "no.gpx"}}', "no.gpx: cannot be read: No such file or directory"),
                                 ('{"replay": {"file": "no.nmea"}}', "no.nmea")):
            with self.subTest(content):
                path = self.write("s.json", content)
                ran = self.run_arcsim("check", path)
                self.assertEqual((ran.returncode, ran.stdout), (3, ""))
                self.assertIn(message, ran.stderr)
        self.write("yes.gpx", "<gpx><wpt lat='1' lon='2'/><wpt lat='1' lon='91'/></gpx>")
        path = self.write("s.json", '{"route": {"gpx": "yes.gpx"}}')
        self.assert_run(self.run_arcsim("check", path), out=f"{path}: accepted\n")

    def test_needs_a_file(self):
        self.assert_run(self.run_arcsim("check"), 2,
                        err="arcsim: check: FILE is required\nRun 'arcsim check --help' for more information.\n")
        folder = self.folder
        ran = self.run_arcsim("check", folder)
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertIn(folder, ran.stderr)


if __name__ == "__main__":
    run.main()
