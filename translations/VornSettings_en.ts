<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_GB">
<context>
    <name>VornSettingsClass</name>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>TextLabel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Menu</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VornSettings</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabAbout</name>
    <message>
        <source>About</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Information</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Selection:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save the displayed data to a file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save As</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabAboutDlg</name>
    <message>
        <source>Save Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Text Files (*.txt);;All Files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to open file</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabAdvanced</name>
    <message>
        <source>Advanced</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Firmware Update</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File path:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Program FPGA</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Program Front</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Program SS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CheckBox</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>After an update, shut down the OS and then turn off the power to the unit for 10 seconds.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shutdown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset all settings to factory default state</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Default Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Factory defaults</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabBacklight</name>
    <message>
        <source>Display</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Backlight level</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>0</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Automatic backlight</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Soft transitions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Change the reject window size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sensitivity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>LED dimming</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Backlight HW</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>status:   </source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabBuzzer</name>
    <message>
        <source>Buzzer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Freq</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frequency</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>On</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabCan</name>
    <message>
        <source>CAN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CAN Device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Baud rate (kbp/s)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frame type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Apply</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabDigIO</name>
    <message>
        <source>Digital Input/Output</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>TextLabel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DI 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DI 3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DI 2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DI 4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Outputs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DO 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DO 3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DO 2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DO 4</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabLED</name>
    <message>
        <source>Led</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Signal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Duty cycle</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frequency</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Freq</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Color</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>R:15 G:15 B:15</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select color</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Repetition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pulses</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Idle time (ms)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Front LED</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enable LED during system start-up.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>LED</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabLightSensor</name>
    <message>
        <source>Light sensor</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Illumination</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mode</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Average Wnd size
(Samples)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reject Wnd size
(Samples)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reject delta
(Lux)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>On</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabMenu</name>
    <message>
        <source>Menu</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Temperature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Display</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Power</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heater</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>About</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Led</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Buzzer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CAN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Digital I/O</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Touch</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Light sensor</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>On/Off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Telematics</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabOnOff</name>
    <message>
        <source>On/Off Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Short press - ON/OFF button</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Action of a short press</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Long press - ON/OFF button</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Action of a long press</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Required time to press:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Required time to press</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Range: 0 to 65535</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Suspend mode</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Maximum time in suspend mode (0 = Infinite):</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Maximum time in suspend mode</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>min</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ON/OFF signal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Action of the ON/OFF signal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Required state change time:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Required state change time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Range: 0 to 4294967295</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unit start-up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start-up trigger</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Always start when
 power turned on</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Apply</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabPower</name>
    <message>
        <source>Power</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Which power settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CAN power</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>External fan power</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Video Ch 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Video Ch 2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Video Ch 3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Video Ch 4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Battery</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Battery voltage</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Battery level</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Charge status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Powersource: </source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabSysConf</name>
    <message>
        <source>Heater</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heating temperature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p align=&quot;right&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;Enable internal heater and delay start-up&lt;/span&gt;&lt;/p&gt;&lt;p align=&quot;right&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;when internal temperature is lower than:&lt;/span&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heating temperature in °C</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Range: -25°C to +5°C</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>°C</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heating temperature in °F</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Range: -13°F to +41°F</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>°F</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Apply</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabTelematics</name>
    <message>
        <source>Telematics</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GSM/GPRS Enabled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enabled at start-up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>WLAN Enabled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bluetooth Enabled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GPS Enabled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GSM/GPRS device:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GPS device:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Available interfaces</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GPS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GPS Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date and time:  </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>INVALID</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Position:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Satelites in fix:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Altitude:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Speed:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Accuracy:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Serial data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GPS antenna status: OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Raw data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GSM/GPRS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PIN code status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PIN code status: Unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PIN code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter PIN code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> Set PIN </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Get PIN status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network status: Unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Get network status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send SMS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Phone number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Phone number to send to</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SMS text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter the text to send</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom AT command</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom AT command:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>AT command</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter a custom AT command</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send custom AT command</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modem output</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GSM/GPRS enabled at start-up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>WLAN enabled at start-up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bluetooth enabled at start-up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GPS enabled at start-up</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabTemp</name>
    <message>
        <source>Temperature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Current temperature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>System Supervisor:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PCB:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CPU:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CPU board:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hidden</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabTouch</name>
    <message>
        <source>Touch Screen</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Profile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use mouse profile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use touch profile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Apply</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Apply at next boot</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Calibrate Now</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use the 13p calibration if the 5p gives poor result at the edges of the display</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Range: 0 to 65535</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;ms&lt;/span&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Advanced settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p align=&quot;center&quot; style=&quot;margin-top:0px; margin-bottom:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;Restore all &lt;/span&gt;&lt;/p&gt;&lt;p align=&quot;center&quot; style=&quot;margin-top:0px; margin-bottom:0px;&quot;&gt;&lt;span style=&quot; font-size:8pt;&quot;&gt;advanced settings&lt;/span&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Defaults</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tabVersion</name>
    <message>
        <source>Version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Peripheral software</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FPGA:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>System Supervisor:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Front controller:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Application interface</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vornaux API:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vornsettings:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vornaux Driver:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Operating System</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OS version:</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
