<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>MSysScript_err</name>
    <message>
        <source>Error loading script database</source>
        <comment>id=10154</comment>
        <translation>Fehler beim Laden der Skriptdatenbank</translation>
    </message>
    <message>
        <source>Error loading script</source>
        <comment>id=10156</comment>
        <translation>Fehler beim Laden des Skripts</translation>
    </message>
    <message>
        <source>Error saving script</source>
        <comment>id=10158</comment>
        <translation>Fehler beim Speichern des Skripts</translation>
    </message>
    <message>
        <source>Error executing script</source>
        <comment>id=10160</comment>
        <translation>Fehler beim Ausführen des Skripts</translation>
    </message>
    <message>
        <source>Error recording script</source>
        <comment>id=10162</comment>
        <translation>Fehler beim Aufzeichnen des Skripts</translation>
    </message>
    <message>
        <source>Error importing script</source>
        <comment>id=10164</comment>
        <translation>Fehler beim Importieren des Skripts</translation>
    </message>
    <message>
        <source>Error exporting script</source>
        <comment>id=10166</comment>
        <translation>Fehler beim Exportieren des Skripts</translation>
    </message>
    <message>
        <source>Error importing script archive</source>
        <comment>id=10168</comment>
        <translation>Fehler beim Importieren des Skriptarchivs</translation>
    </message>
    <message>
        <source>Error exporting script archive</source>
        <comment>id=10170</comment>
        <translation>Fehler beim Exportieren des Skriptarchivs</translation>
    </message>
    <message>
        <source>Exiting not possible</source>
        <comment>id=10172</comment>
        <translation>Beenden nicht möglich</translation>
    </message>
    <message>
        <source>Parsing script failed</source>
        <comment>id=10174</comment>
        <translation>Analyse des Skripts fehlgeschlagen</translation>
    </message>
    <message>
        <source>Parsing parameters failed</source>
        <comment>id=10176</comment>
        <translation>Analyse der Parameter fehlgeschlagen</translation>
    </message>
    <message>
        <source>Resolving item failed</source>
        <comment>id=10178</comment>
        <translation>Auflösen des Elements fehlgeschlagen</translation>
    </message>
    <message>
        <source>Script generation failed</source>
        <comment>id=10180</comment>
        <translation>Erzeugen des Skripts fehlgeschlagen</translation>
    </message>
    <message>
        <source>Maximum recursion depth exceeded</source>
        <comment>id=10182</comment>
        <translation>Maximale Rekursionstiefe überschritten</translation>
    </message>
    <message>
        <source>Script cannot be locked</source>
        <comment>id=10184</comment>
        <translation>Skript kann nicht gesperrt werden</translation>
    </message>
    <message>
        <source>Cannot load the image.</source>
        <comment>id=27742</comment>
        <translation>Das Bild kann nicht geladen werden.</translation>
    </message>
    <message>
        <source>Cannot access the dialog template database.</source>
        <comment>id=27743</comment>
        <translation>Auf die Dialogvorlagen-Datenbank kann nicht zugegriffen werden.</translation>
    </message>
    <message>
        <source>Cannot save the file.</source>
        <comment>id=28205</comment>
        <translation>Die Datei kann nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Unable to access file: %1</source>
        <comment>id=9989</comment>
        <translation>Zugriff auf Datei nicht möglich: %1</translation>
    </message>
</context>
<context>
    <name>MSysScript_cmd</name>
    <message>
        <source>Delay script execution</source>
        <comment>id=9984</comment>
        <translation>Skriptausführung verzögern</translation>
    </message>
    <message>
        <source>Edit Script</source>
        <comment>id=25937</comment>
        <translation>Skript bearbeiten</translation>
    </message>
    <message>
        <source>Execute Script</source>
        <comment>id=25938</comment>
        <translation>Skript ausführen</translation>
    </message>
    <message>
        <source>Import Script</source>
        <comment>id=9991</comment>
        <translation>Skript importieren</translation>
    </message>
    <message>
        <source>Export Script</source>
        <comment>id=10010</comment>
        <translation>Skript exportieren</translation>
    </message>
    <message>
        <source>Import Script Archive</source>
        <comment>id=10014</comment>
        <translation>Skriptarchiv importieren</translation>
    </message>
    <message>
        <source>Export Script Archive</source>
        <comment>id=10030</comment>
        <translation>Skriptarchiv exportieren</translation>
    </message>
    <message>
        <source>Create User-Defined Dialog</source>
        <comment>id=27659</comment>
        <translation>Benutzerdefinierten Dialog erzeugen</translation>
    </message>
    <message>
        <source>Executing user-defined dialog</source>
        <comment>id=27660</comment>
        <translation>Benutzerdefinierten Dialog ausführen</translation>
    </message>
    <message>
        <source>Show User-Defined Dialog</source>
        <comment>id=27661</comment>
        <translation>Benutzerdefinierten Dialog anzeigen</translation>
    </message>
    <message>
        <source>Open User-Defined Dialog</source>
        <comment>id=28564</comment>
        <translation>Benutzerdefinierten Dialog öffnen</translation>
    </message>
    <message>
        <source>Close User-Defined Dialog</source>
        <comment>id=28566</comment>
        <translation>Benutzerdefinierten Dialog schließen</translation>
    </message>
</context>
<context>
    <name>MSysScript_menu</name>
    <message>
        <source>Edit Script</source>
        <comment>id=9985</comment>
        <translation>Skript bearbeiten...</translation>
    </message>
    <message>
        <source>Execute Script</source>
        <comment>id=9986</comment>
        <translation>Skript ausführen...</translation>
    </message>
</context>
<context>
    <name>MSysScript_cfg</name>
    <message>
        <source>Timeout</source>
        <comment>id=10153</comment>
        <translation>Zeitlimit</translation>
    </message>
    <message>
        <source>Script dialogs</source>
        <comment>id=30496</comment>
        <translation>Skriptdialoge</translation>
    </message>
</context>
</TS>
