#!/usr/bin/env python3
"""What `orvml check` prints, and how it ends."""
import json
import unittest

import numpy as np

from shell import INT, Document, Shell, TypeGroup, Cells, exchange_writer, tetrahedron

UNUSED = """part.h5: 1 warning
  warning orvml.mesh.unused-node
    /OrvInput/Nodes has 1 node that no cell names
      at node 4
    cure: leave the node out and number the others anew, unless it is meant to stand alone
"""


def with_unused_node():
    document = tetrahedron()
    document.coordinates = np.vstack([document.coordinates, [5, 5, 5]])
    document.node_attributes = {}
    return document


def with_wrong_index():
    document = with_unused_node()
    document.cells["Elements"].connectivities = np.array([0, 1, 2, 7], INT)
    return document


class Check(Shell):
    def test_exit_codes_tell_the_worst_finding(self):
        self.write("sound.h5", tetrahedron())
        self.write("warning.h5", with_unused_node())
        self.write("error.h5", with_wrong_index())
        for arguments, code in (("sound.h5", 0), ("--strict sound.h5", 0), ("warning.h5", 1),
                                ("--strict warning.h5", 2), ("error.h5", 2), ("missing.h5", 3),
                                ("sound.h5 warning.h5", 1), ("error.h5 missing.h5 sound.h5", 3),
                                ("--nonsense sound.h5", 3), ("", 3)):
            for form in ("", "--json", "--sarif"):
                with self.subTest(arguments=arguments, form=form):
                    self.assertEqual(self.run_line(f"orvml check {form} {arguments}")[0], code)

    def test_sound_file_has_nothing_found(self):
        self.write("part.h5", tetrahedron())
        self.assert_prints("orvml check part.h5", "part.h5: nothing found\n")

    def test_findings_are_grouped_with_their_cure(self):
        self.write("part.h5", with_unused_node())
        self.assert_prints("orvml check part.h5", UNUSED, code=1)

    def test_errors_come_before_warnings_and_notes(self):
        self.write("part.h5", with_wrong_index())
        self.damage("part.h5", lambda file: file.create_group("Extras"))
        printed = self.run_line("orvml check part.h5")[1]
        severities = [line.split()[0] for line in printed.splitlines() if " orvml." in line]
        self.assertEqual(severities, sorted(severities, key=["error", "warning", "note"].index))
        self.assertEqual(set(severities), {"error", "warning", "note"})

    def test_quality_has_every_measure_of_every_shape(self):
        self.write("part.h5", tetrahedron())
        printed = self.run_line("orvml check --quality part.h5")[1]
        self.assertIn("  quality of 4 triangles in /OrvInput/Faces\n", printed)
        self.assertIn("  quality of 1 tetrahedron in /OrvInput/Elements\n    scaled Jacobian: ", printed)
        told = self.json_of("orvml check --quality --json part.h5", "check")["files"][0]["quality"]
        self.assertEqual([(cells["shape"], cells["cells"], len(cells["figures"])) for cells in told],
                         [("triangle", 4, 4), ("tetrahedron", 1, 4)])

    def test_json_has_findings_with_places(self):
        self.write("part.h5", with_unused_node())
        file = self.json_of("orvml check --json part.h5 missing.h5", "check", code=3)["files"]
        self.assertEqual(file[0]["worst"], "warning")
        self.assertEqual(file[0]["findings"][0]["places"], [{"kind": "node", "index": 4}])
        self.assertEqual(file[1]["error"]["code"], "orvml.file.not-found")

    def test_number_of_places_can_be_chosen(self):
        document = tetrahedron()
        document.coordinates = np.vstack([document.coordinates, np.arange(9).reshape(3, 3) + 9])
        document.node_attributes = {}
        self.write("part.h5", document)
        self.assertIn("at node 4, node 5 and more\n",
                      self.run_line("orvml check --places 2 part.h5")[1])

    def test_coincidence_can_be_chosen(self):
        document = Document(dimension=2, coordinates=np.array([[0, 0], [1, 0], [1, 1], [0, 1e-3]]),
                            parameters={b"a": 1.0},
                            cells={"Faces": Cells([TypeGroup(3, 4, 1)],
                                                  np.array([0, 1, 2, 3], INT), {})})
        self.write("part.h5", document)
        self.assertEqual(self.run_line("orvml check part.h5")[0], 0)
        self.assertIn("coincident-nodes", self.run_line("orvml check --coincidence 0.01 part.h5")[1])


class Sarif(Shell):
    """The fields that SARIF 2.1.0 asks for; none but those that it names."""

    KEYS = {"log": {"$schema", "version", "runs"}, "run": {"tool", "invocations", "results"},
            "driver": {"name", "version", "rules"},
            "rule": {"id", "shortDescription", "help", "defaultConfiguration"},
            "result": {"ruleId", "ruleIndex", "level", "message", "locations",
                       "partialFingerprints", "properties"},
            "location": {"physicalLocation", "logicalLocations"},
            "invocation": {"executionSuccessful", "exitCode", "toolExecutionNotifications"},
            "notification": {"level", "descriptor", "message", "locations"}}

    def log_of(self, line):
        log = json.loads(self.run_line(line)[1])
        self.assert_keys("log", log)
        self.assertEqual((log["version"], len(log["runs"])), ("2.1.0", 1))
        run = log["runs"][0]
        self.assert_keys("run", run)
        self.assert_keys("driver", run["tool"]["driver"])
        self.assertEqual(run["tool"]["driver"]["name"], "orvml")
        return run

    def assert_keys(self, kind, value):
        self.assertEqual(set(value) - self.KEYS[kind], set(), kind)

    def assert_location(self, location, uri):
        self.assert_keys("location", location)
        self.assertEqual(location["physicalLocation"], {"artifactLocation": {"uri": uri}})

    def test_rules_have_unique_ids_and_a_level(self):
        self.write("part.h5", tetrahedron())
        rules = self.log_of("orvml check --sarif part.h5")["tool"]["driver"]["rules"]
        self.assertEqual(len({rule["id"] for rule in rules}), len(rules))
        for rule in rules:
            self.assert_keys("rule", rule)
            self.assertIn(rule["defaultConfiguration"]["level"], ("note", "warning", "error"))
            self.assertTrue(rule["shortDescription"]["text"] and rule["help"]["text"])

    def test_clean_file_has_empty_results(self):
        self.write("part.h5", tetrahedron())
        run = self.log_of("orvml check --sarif part.h5")
        self.assertEqual(run["results"], [])
        self.assertEqual(run["invocations"], [{"executionSuccessful": True, "exitCode": 0}])

    def test_result_names_its_rule_file_and_object(self):
        self.write("a part.h5", with_unused_node())
        run = self.log_of("orvml check --sarif 'a part.h5'")
        self.assertEqual(len(run["results"]), 1)
        result = run["results"][0]
        self.assert_keys("result", result)
        rule = run["tool"]["driver"]["rules"][result["ruleIndex"]]
        self.assertEqual((result["ruleId"], result["level"]), (rule["id"], "warning"))
        self.assertEqual(rule["id"], "orvml.mesh.unused-node")
        self.assertEqual(result["message"],
                         {"text": "/OrvInput/Nodes has 1 node that no cell names"})
        self.assert_location(result["locations"][0], "a%20part.h5")
        self.assertEqual(result["locations"][0]["logicalLocations"],
                         [{"fullyQualifiedName": "/OrvInput/Nodes"}])
        self.assertTrue(all(isinstance(text, str)
                            for text in result["partialFingerprints"].values()))

    def test_file_that_cannot_be_read_is_a_notification(self):
        run = self.log_of("orvml check --sarif missing.h5")
        invocation = run["invocations"][0]
        self.assert_keys("invocation", invocation)
        self.assertEqual((invocation["executionSuccessful"], invocation["exitCode"]), (False, 3))
        notification = invocation["toolExecutionNotifications"][0]
        self.assert_keys("notification", notification)
        self.assertEqual(notification["descriptor"], {"id": "orvml.file.not-found"})
        self.assert_location(notification["locations"][0], "missing.h5")

    def test_uris_are_percent_encoded(self):
        for name, uri in (("Größe.h5", "Gr%C3%B6%C3%9Fe.h5"), ("a:b.h5", "a%3Ab.h5"),
                          ("100%.h5", "100%25.h5")):
            with self.subTest(name=name):
                self.write(name, with_unused_node())
                run = self.log_of(f"orvml check --sarif '{name}'")
                self.assert_location(run["results"][0]["locations"][0], uri)
        self.write("part.h5", with_unused_node())
        run = self.log_of('orvml check --sarif "$PWD/part.h5"')
        uri = run["results"][0]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"]
        self.assertTrue(uri.startswith("file:///") and uri.endswith("/part.h5"), uri)


if __name__ == "__main__":
    unittest.main()
