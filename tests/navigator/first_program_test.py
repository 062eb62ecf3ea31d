"""The program that the README shows does what the README says."""

import run


class FirstProgram(run.NavigatorTest):
    def test_prints_what_the_modem_answers(self):
        program = self.start(program="FIRST_PROGRAM")
        self.assert_ends(program, 0)
        self.assertEqual(program.out, "Satellites below 5 degrees are not used.\n")
        for call in ("ARC_Open()", 'Get ARC_CheckModuleSetting("Sens/MinElevAngle")', "ARC_Close()"):
            self.assertIn(f"] {call} took ", program.err)


if __name__ == "__main__":
    run.main()
